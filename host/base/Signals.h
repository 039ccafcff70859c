#ifndef KYR_HOST_BASE_SIGNALS_H
#define KYR_HOST_BASE_SIGNALS_H

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <string>
#include <utility>

#include "base/TimePoint.h"

struct TSignal {
    int number;    ///< 0: none
    pid_t sender;  ///< 0: the kernel, as for a key on the terminal
};

/// Blocks the signals that would end this process, and SIGCHLD, so that they can be waited for, whoever sent them. A
/// fault of this process ends it all the same. Those that are ignored are not blocked. Signals that came meanwhile and
/// were not waited for take effect when the object is destroyed.
class TBlockedSignals {
public:
    TBlockedSignals();
    ~TBlockedSignals();
    TBlockedSignals(const TBlockedSignals&) = delete;
    TBlockedSignals& operator=(const TBlockedSignals&) = delete;

    /// The signal that came, or none if the moment came first.
    TSignal WaitUntil(TTimePoint moment) const;

private:
    sigset_t fBlocked;
    sigset_t fBefore;
    struct sigaction fChildAction;
};

/// What a signal means for a process that waits for its work to be done.
enum class ESignalMeaning {
    eNoSignal,             ///< none came
    eNothing,              ///< one came that interrupts nothing
    eInterruption,         ///< somebody interrupts this process
    eRepeatedInterruption  ///< somebody insists
};

/// Distinguishes the signals by which somebody interrupts this process from all others.
class TInterruptions {
public:
    /// Whether the work itself sent the signal, which must not interrupt this process then.
    using TIsOwnWork = std::function<bool(const TSignal&)>;

    explicit TInterruptions(TIsOwnWork isOwnWork) : fIsOwnWork(std::move(isOwnWork)) {}

    /// Waits for one signal until the moment. What comes within 20 ms of an interruption belongs to it: timeout(1), for
    /// example, signals the process and then its group.
    ESignalMeaning WaitUntil(TTimePoint moment);
    /// The signal of the last interruption; 0: there was none.
    int Signal() const { return fSignal; }

private:
    bool IsInterruption(const TSignal& signal) const;

    const TIsOwnWork fIsOwnWork;
    const TBlockedSignals fSignals;
    int fSignal = 0;
    TTimePoint fMoment;  // of the last interruption
};

/// "SIGTERM"
std::string SignalName(int signal);

/// Ends this process as if the signal had never been blocked.
[[noreturn]] void EndBySignal(int signal);

#endif
