#include "base/Signals.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kEnding[] = {SIGHUP,  SIGINT,  SIGQUIT,   SIGTERM, SIGUSR1, SIGUSR2,
                           SIGALRM, SIGPROF, SIGVTALRM, SIGPOLL, SIGPWR,  SIGSTKFLT};

timespec Until(TTimePoint moment) {
    using namespace std::chrono;
    const TTimePoint now = TClock::now();
    const nanoseconds rest = std::clamp<nanoseconds>(moment - now, nanoseconds(0), hours(1));
    return {static_cast<time_t>(rest.count() / 1'000'000'000), static_cast<long>(rest.count() % 1'000'000'000)};
}

// While it is held it would come all the same, and whoever started us wants us to go on. A shell has SIGINT ignored for
// all that it runs in the background, which means nothing.
bool IsIgnored(int signal) {
    struct sigaction action {};
    if (signal == SIGINT) return false;
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

THeldSignals::THeldSignals() {
    sigemptyset(&fHeld);
    sigaddset(&fHeld, SIGCHLD);
    for (const int signal : kEnding)
        if (!IsIgnored(signal)) sigaddset(&fHeld, signal);
    // One that is ignored would never come: our caller may have left it so.
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &action, &fChildAction);
    sigprocmask(SIG_BLOCK, &fHeld, &fBefore);
}

THeldSignals::~THeldSignals() {
    sigprocmask(SIG_SETMASK, &fBefore, nullptr);
    sigaction(SIGCHLD, &fChildAction, nullptr);
}

TSignal THeldSignals::WaitUntil(TTimePoint moment) const {
    const timespec timeout = Until(moment);
    siginfo_t info{};
    const int signal = sigtimedwait(&fHeld, &info, &timeout);
    return signal < 0 ? TSignal{} : TSignal{signal, info.si_code <= 0 ? info.si_pid : 0};
}

std::string SignalName(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}

void EndBySignal(int signal) {
    std::signal(signal, SIG_DFL);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, signal);
    std::raise(signal);
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
    std::_Exit(128 + signal);
}
