#include "isolation/ChildSetting.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace {

constexpr rlim_t kMostMemory = rlim_t{2} << 30;
constexpr rlim_t kLargestFile = rlim_t{256} << 20;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsInstrumented = true;  // and takes terabytes of address space
#else
constexpr bool kIsInstrumented = false;
#endif

void Limit(__rlimit_resource_t resource, rlim_t value) {
    rlimit limit{};
    if (getrlimit(resource, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max = std::min(value, limit.rlim_max);
    setrlimit(resource, &limit);
}

rlim_t MemoryForOne() {
    struct sysinfo machine {};
    if (sysinfo(&machine) != 0) return kMostMemory;
    return std::min(kMostMemory, rlim_t{machine.totalram} * machine.mem_unit / 4);
}

void SetLimits() {
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_FSIZE, kLargestFile);
    if (!kIsInstrumented) Limit(RLIMIT_DATA, MemoryForOne());
}

void SetStreams(int printed) {
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    dup2(printed, STDOUT_FILENO);
    dup2(printed, STDERR_FILENO);
    close(null);
    close(printed);
}

// Who runs out of memory for all is to be the first to go.
void OfferToTheKernel() {
    const int file = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (file < 0) return;
    (void)!write(file, "1000", 4);
    close(file);
}

// Those that our caller may have had ignored. A pipe or file that takes no more is no reason to end, here as in the
// host.
void ResetSignals() {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGCHLD, SIGUSR1, SIGUSR2}) std::signal(signal, SIG_DFL);
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

void PrepareChild(pid_t parent, int printed, bool closesOthers) {
    setsid();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    SetStreams(printed);
    if (closesOthers) close_range(STDERR_FILENO + 1, ~0u, 0);
    SetLimits();
    OfferToTheKernel();
    ResetSignals();
}
