#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Races.h"

namespace {

constexpr int kLeastRounds = 21;
constexpr double kRequiredMilliseconds = 5;
constexpr double kRequiredOfSandbox = 10;
constexpr int kPlugins = 20;

pid_t Spawn(const char* option) {
    const char* const arguments[] = {KYR_PROGRAM, "collect", "--plugins", SMALL_PLUGINS, option, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = -1;
    posix_spawn(&process, KYR_PROGRAM, &actions, nullptr, const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

// In wall-clock time, because the processes run on several processors.
double CollectOnce(const char* option) {
    const auto start = std::chrono::steady_clock::now();
    int status = -1;
    if (waitpid(Spawn(option), &status, 0) < 0 || status != 0) {
        std::fprintf(stderr, "kyr-bench: %s failed\n", KYR_PROGRAM);
        std::exit(1);
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> figures) {
    std::nth_element(figures.begin(), figures.begin() + figures.size() / 2, figures.end());
    return figures[figures.size() / 2];
}

void Print(const char* name, const char* what, const std::vector<double>& figures, const char* other,
           const std::vector<double>& others, double required) {
    const double added = Median(figures) - Median(others);
    std::printf("%-22s %d small plugins: %.2f ms %s, %.2f ms %s; %.2f ms more, %.2f %s\n", name, kPlugins,
                Median(figures), what, Median(others), other, added, required, added <= required ? "met" : "missed");
}

}  // namespace

void RaceIsolation(const TTable& table) {
    if (!table.Wants("isolation")) return;
    std::vector<double> confined, apart, together;
    for (int round = 0; round < std::max(table.Rounds(), kLeastRounds); ++round) {
        confined.push_back(CollectOnce("--sandbox=auto"));
        apart.push_back(CollectOnce("--sandbox=off"));
        together.push_back(CollectOnce("--in-process"));
    }
    Print("isolation", "in processes of their own", apart, "in one", together, kRequiredMilliseconds);
    Print("sandbox", "with a sandbox", confined, "without", apart, kRequiredOfSandbox);
}
