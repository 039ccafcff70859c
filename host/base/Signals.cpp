#include "base/Signals.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// The signals that cannot be blocked, those that stop and continue processes, and those that do nothing by default.
constexpr int kNeverBlocked[] = {SIGKILL, SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU, SIGCONT, SIGURG, SIGWINCH};

constexpr std::chrono::milliseconds kDebounce(20);

timespec Until(TTimePoint moment) {
    using namespace std::chrono;
    const TTimePoint now = TClock::now();
    const nanoseconds rest = std::clamp<nanoseconds>(moment - now, nanoseconds(0), hours(1));
    return {static_cast<time_t>(rest.count() / 1'000'000'000), static_cast<long>(rest.count() % 1'000'000'000)};
}

// Ignored signals must not be blocked: while blocked they are kept and delivered like others. A caller that ignores
// them, such as nohup(1), means this process to go on. A shell ignores SIGINT for everything that it runs in the
// background, so that an ignored SIGINT does not show what the user means; it is handled.
bool IsIgnored(int signal) {
    struct sigaction action {};
    if (signal == SIGINT) return false;
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// With the two signals that the C library keeps for itself, and takes out of every set that it is given: anybody can
// send them, and they would end this process.
void ChangeMask(int how, const sigset_t& mask) { syscall(SYS_rt_sigprocmask, how, &mask, nullptr, _NSIG / 8); }

}  // namespace

TBlockedSignals::TBlockedSignals() {
    std::memset(&fBlocked, 0xff, sizeof fBlocked);
    for (const int signal : kNeverBlocked) sigdelset(&fBlocked, signal);
    for (int signal = 1; signal < SIGRTMIN; ++signal)
        if (signal != SIGCHLD && IsIgnored(signal)) sigdelset(&fBlocked, signal);
    // The caller may have left SIGCHLD ignored; then it would never come, and nobody could wait for a child.
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &action, &fChildAction);
    sigprocmask(SIG_SETMASK, nullptr, &fBefore);
    ChangeMask(SIG_BLOCK, fBlocked);
}

TBlockedSignals::~TBlockedSignals() {
    ChangeMask(SIG_SETMASK, fBefore);
    sigaction(SIGCHLD, &fChildAction, nullptr);
}

TSignal TBlockedSignals::WaitUntil(TTimePoint moment) const {
    const timespec timeout = Until(moment);
    siginfo_t info{};
    const int signal = sigtimedwait(&fBlocked, &info, &timeout);
    return signal < 0 ? TSignal{} : TSignal{signal, info.si_code <= 0 ? info.si_pid : 0};
}

ESignalMeaning TInterruptions::WaitUntil(TTimePoint moment) {
    const TSignal signal = fSignals.WaitUntil(moment);
    if (signal.number == 0) return ESignalMeaning::eNoSignal;
    if (!IsInterruption(signal)) return ESignalMeaning::eNothing;
    const TTimePoint now = TClock::now();
    const bool isRepeated = fSignal != 0;
    if (isRepeated && now < fMoment + kDebounce) return ESignalMeaning::eNothing;
    fMoment = now;
    fSignal = signal.number;
    return isRepeated ? ESignalMeaning::eRepeatedInterruption : ESignalMeaning::eInterruption;
}

bool TInterruptions::IsInterruption(const TSignal& signal) const {
    return signal.number != SIGCHLD && !fIsOwnWork(signal);
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
