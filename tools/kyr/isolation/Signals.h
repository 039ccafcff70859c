#ifndef SIGNALS_H
#define SIGNALS_H

#include <csignal>

#include "isolation/TimeSpan.h"

/// Holds back the signals that ask us to end, and the one that tells of a child's end, to wait for them. Those that
/// came meanwhile and were not waited for act when this object goes.
class THeldSignals {
public:
    THeldSignals();
    ~THeldSignals();
    THeldSignals(const THeldSignals&) = delete;
    THeldSignals& operator=(const THeldSignals&) = delete;

    /// The signal that came, or 0 if the moment has come first.
    int WaitUntil(TMoment moment) const;

private:
    sigset_t fHeld;
    sigset_t fBefore;
    struct sigaction fChildAction;
};

/// Ends this process as if the signal had never been held.
[[noreturn]] void EndBySignal(int signal);

#endif
