#ifndef KYR_HOST_BASE_SIGNALS_H
#define KYR_HOST_BASE_SIGNALS_H

#include <sys/types.h>

#include <csignal>
#include <string>

#include "base/TimePoint.h"

struct TSignal {
    int number;    ///< 0: none
    pid_t sender;  ///< 0: the kernel, as for a key on the terminal
};

/// Holds back the signals that would end us, but for those that tell of a fault of our own, and the one that tells of a
/// child's end, to wait for them. Those that came meanwhile and were not waited for act when this object goes.
class THeldSignals {
public:
    THeldSignals();
    ~THeldSignals();
    THeldSignals(const THeldSignals&) = delete;
    THeldSignals& operator=(const THeldSignals&) = delete;

    /// The signal that came, or none if the moment has come first.
    TSignal WaitUntil(TTimePoint moment) const;

private:
    sigset_t fHeld;
    sigset_t fBefore;
    struct sigaction fChildAction;
};

/// "SIGTERM"
std::string SignalName(int signal);

/// Ends this process as if the signal had never been held.
[[noreturn]] void EndBySignal(int signal);

#endif
