#ifndef PLUGINPROCESSES_H
#define PLUGINPROCESSES_H

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "command/Options.h"
#include "isolation/Orphans.h"
#include "isolation/PluginProcess.h"
#include "isolation/Progress.h"
#include "isolation/Signals.h"

/// Runs libraries in processes of their own, several at a time, as long as there is time and nobody interrupts, and
/// stores the instances that they deliver, in the order of the libraries.
class TPluginProcesses {
public:
    using TListener = std::function<void(const TPluginProcess&)>;

    /// In all there are as many libraries as the count says. The listener is told of each process that has ended, in
    /// the same order.
    TPluginProcesses(const TSessionOptions& options, size_t count, TListener listener);

    /// Stores the ordinary instances. The report of a library whose process could not be started tells why.
    void Run(const std::vector<TLibrary*>& libraries, const TPluginTask& task);
    /// Once all have run: stores the others too, and concludes the reports.
    void Conclude();
    /// 0: nobody interrupted.
    int Interruption() const { return fInterruption; }

private:
    void Start(const TPluginTask& task);
    bool StartOne(TLibrary& library, const TPluginTask& task);
    bool TakeInSome(bool associations);
    void CountOvertime(TPluginProcess& process);
    void Wait(TMoment latest);
    void FinishEnded();
    void TellEnded();
    bool IsInterruption(const TSignal& signal) const;
    void HeedPending();
    void EndOrphans();
    void Interrupt(int signal);
    void StopAll(const TVerdict& why);
    std::vector<std::string> RunningNames() const;

    const double fTimeout;
    const double fDeadlineSeconds;
    const TMoment fDeadline;
    const size_t fAtOnce;
    const TListener fListener;
    TVerdict fStopped;
    int fInterruption = 0;
    TMoment fInterrupted;
    THeldSignals fSignals;
    TOrphans fOrphans;
    TProgress fProgress;
    std::deque<TLibrary*> fWaiting;
    std::vector<TPluginProcess*> fRunning;
    std::vector<std::unique_ptr<TPluginProcess>> fStarted;
    size_t fTaken = 0;  // of those, from the start: all its instances of the kind that is on are stored
    int fOvertime = 0;  // strokes for the next one, when we want to come to an end
    size_t fTold = 0;   // the listener knows that they ended
};

#endif
