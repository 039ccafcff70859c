#ifndef KYR_HOST_ISOLATION_PLUGINSCHEDULER_H
#define KYR_HOST_ISOLATION_PLUGINSCHEDULER_H

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "base/Orphans.h"
#include "base/Signals.h"
#include "isolation/PluginProcess.h"
#include "isolation/Progress.h"
#include "isolation/RunLimits.h"

/// Runs libraries in processes of their own, several at a time, as long as there is time and nobody interrupts, and
/// stores the instances that they deliver, in the order of the libraries.
class TPluginScheduler {
public:
    using TListener = std::function<void(const TPluginProcess&)>;

    /// In all there are as many libraries as the count says. The listener is told of each process that has ended, in
    /// the same order.
    TPluginScheduler(const TRunLimits& limits, size_t count, TListener listener);

    /// Stores the ordinary instances. The report of a library whose process could not be started tells why.
    void Run(const std::vector<TPluginLibrary*>& libraries, const TPluginTask& task);
    /// Once all have run: stores the others too, and concludes the reports.
    void Conclude();
    /// 0: nobody interrupted.
    int Interruption() const { return fInterruption; }

private:
    void Start(const TPluginTask& task);
    bool StartOne(TPluginLibrary& library, const TPluginTask& task);
    bool TakeInSome(bool associations);
    void LimitDraining(TPluginProcess& process);
    void Wait(TTimePoint latest);
    void FinishEnded();
    void TellEnded();
    bool IsInterruption(const TSignal& signal) const;
    void HandlePendingSignals();
    void EndOrphans();
    void Interrupt(int signal);
    void StopAll(const TOutcome& why);
    std::vector<std::string> RunningNames() const;

    const double fTimeout;
    const double fDeadlineSeconds;
    const TTimePoint fDeadline;
    const size_t fAtOnce;
    const TListener fListener;
    TOutcome fStopped;
    int fInterruption = 0;
    TTimePoint fInterrupted;
    THeldSignals fSignals;
    TOrphans fOrphans;
    TProgress fProgress;
    std::deque<TPluginLibrary*> fWaiting;
    std::vector<TPluginProcess*> fRunning;
    std::vector<std::unique_ptr<TPluginProcess>> fStarted;
    size_t fTaken = 0;     // of those, from the start: all its instances of the kind that is on are stored
    int fDrainSlices = 0;  // strokes for the next one, when we want to come to an end
    size_t fTold = 0;      // the listener knows that they ended
};

#endif
