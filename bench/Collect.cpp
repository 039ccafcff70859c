// kyr-bench-collect [ROUNDS]: collects this machine and the large synthetic one with kyr and with other tools, and
// reads saved collections. A small program of its own, because the peak memory of a child is never below the size of
// the process it was forked from.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "Documents.h"

namespace {

struct TContender {
    const char* name;
    std::vector<const char*> command;
    const char* root = nullptr;  ///< of a recorded machine; null for this one
    double askedMilliseconds = 0;
    double askedMegabytes = 0;
    int worstStatus = 0;           ///< exit status up to which a run counts as successful
    bool isProcessorTime = false;  ///< that is asked for, and not wall-clock time
};

#define KYR_COLLECT KYR_PROGRAM, "collect", "--schema", KYR_SCHEMA, "--plugins"

const TContender kContenders[] = {
    {"kyr, all but software", {KYR_COLLECT, KYR_FEWER_PLUGINS}, nullptr, 17, 8},
    {"kyr, all but software, in one process", {KYR_COLLECT, KYR_FEWER_PLUGINS, "--in-process"}},
    {"kyr", {KYR_COLLECT, KYR_PLUGINS}, nullptr, 50},
    {"kyr --json", {KYR_COLLECT, KYR_PLUGINS, "--json"}, nullptr, 60},
    {"lshw", {"lshw", "-quiet"}},
    {"lshw -json", {"lshw", "-quiet", "-json"}},
    // Not all of its probes: some look for internet providers on the network.
    {"hwinfo",
     {"hwinfo", "--bios", "--cpu", "--memory", "--disk", "--partition", "--netcard", "--network", "--pci", "--usb"}},
    {"facter", {"facter", "--json"}, nullptr, 0, 0, 1},
    {"kyr, large machine", {KYR_COLLECT, KYR_PLUGINS}, KYR_LARGE_MACHINE, 550},
    {"kyr show, 100,000 saved instances", {KYR_PROGRAM, "show", KYR_LARGE_FILE}, nullptr, 1300, 280, 0, true},
    {"kyr identity, a saved machine", {KYR_PROGRAM, "identity", KYR_SAVED_FILE}, nullptr, 25, 0, 0, true},
};

struct TFigures {
    std::vector<double> milliseconds;
    std::vector<double> processor;  ///< CPU time in milliseconds
    double megabytes = 0;           ///< peak memory of the largest process
    bool failed = false;
};

double Median(std::vector<double> figures) {
    std::nth_element(figures.begin(), figures.begin() + figures.size() / 2, figures.end());
    return figures[figures.size() / 2];
}

[[noreturn]] void Become(const TContender& contender) {
    const int nowhere = open("/dev/null", O_RDWR);
    for (int stream = 0; stream < 3; ++stream) dup2(nowhere, stream);
    if (contender.root) setenv("KYR_SYSTEM_ROOT", contender.root, 1);
    std::vector<char*> arguments;
    for (const char* argument : contender.command) arguments.push_back(const_cast<char*>(argument));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

double Milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

void Run(const TContender& contender, TFigures& figures) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) Become(contender);
    int status = -1;
    rusage usage = {};
    if (child > 0) wait4(child, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    figures.milliseconds.push_back(wall.count());
    figures.processor.push_back(Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime));
    figures.megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
    figures.failed = figures.failed || !WIFEXITED(status) || WEXITSTATUS(status) > contender.worstStatus;
}

std::string Met(double figure, double asked) {
    if (asked == 0) return "";
    char text[32];
    std::snprintf(text, sizeof text, "%.0f %s", asked, figure <= asked ? "met" : "missed");
    return text;
}

void Print(const TContender& contender, const TFigures& figures, double ours) {
    if (figures.failed) {
        std::printf("%-38s is not installed or fails\n", contender.name);
        return;
    }
    const double wall = Median(figures.milliseconds), processor = Median(figures.processor);
    const double judged = contender.isProcessorTime ? processor : wall;
    std::printf("%-38s %9.1f %9.1f %7.2f %9.1f  %-12s %-12s\n", contender.name, wall, processor, wall / ours,
                figures.megabytes, Met(judged, contender.askedMilliseconds).c_str(),
                Met(figures.megabytes, contender.askedMegabytes).c_str());
}

// What the last contenders read.
void SaveCollections() {
    std::ofstream(KYR_LARGE_FILE) << DataDocument(100'000);
    TFigures figures;
    Run({"", {KYR_COLLECT, KYR_PLUGINS, "-o", KYR_SAVED_FILE}}, figures);
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 11;
    if (argc > 2 || rounds < 1) {
        std::fputs("kyr-bench-collect [ROUNDS]\n", stderr);
        return 2;
    }
    SaveCollections();
    std::vector<TFigures> figures(std::size(kContenders));
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < figures.size(); ++i) Run(kContenders[i], figures[i]);
    std::printf("%-38s %9s %9s %7s %9s  %-12s %-12s\n", "collect", "wall ms", "CPU ms", "x ours", "peak MB", "asked ms",
                "asked MB");
    for (std::size_t i = 0; i < figures.size(); ++i) Print(kContenders[i], figures[i], Median(figures[0].milliseconds));
}
