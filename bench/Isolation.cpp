#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "Races.h"

namespace {

constexpr int kLeastRounds = 21;
constexpr double kRequiredMilliseconds = 5;

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

}  // namespace

void RaceIsolation(const TTable& table) {
    if (!table.Wants("isolation")) return;
    std::vector<double> apart, together;
    for (int round = 0; round < std::max(table.Rounds(), kLeastRounds); ++round) {
        apart.push_back(CollectOnce(nullptr));
        together.push_back(CollectOnce("--in-process"));
    }
    const double added = Median(apart) - Median(together);
    std::printf("%-22s 20 small plugins: %.2f ms in processes of their own, %.2f ms in one; %.2f ms more, %.2f %s\n",
                "isolation", Median(apart), Median(together), added, kRequiredMilliseconds,
                added <= kRequiredMilliseconds ? "met" : "missed");
}
