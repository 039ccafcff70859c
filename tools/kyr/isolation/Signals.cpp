#include "isolation/Signals.h"

#include <algorithm>
#include <cstdlib>

namespace {

timespec Until(TMoment moment) {
    using namespace std::chrono;
    const TMoment now = TClock::now();
    const nanoseconds rest = std::clamp<nanoseconds>(moment - now, nanoseconds(0), hours(1));
    return {static_cast<time_t>(rest.count() / 1'000'000'000), static_cast<long>(rest.count() % 1'000'000'000)};
}

}  // namespace

THeldSignals::THeldSignals() {
    sigemptyset(&fHeld);
    for (const int signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP}) sigaddset(&fHeld, signal);
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

int THeldSignals::WaitUntil(TMoment moment) const {
    const timespec timeout = Until(moment);
    const int signal = sigtimedwait(&fHeld, nullptr, &timeout);
    return signal < 0 ? 0 : signal;
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
