#ifndef KYR_HOST_ISOLATION_PLUGINSCHEDULER_H
#define KYR_HOST_ISOLATION_PLUGINSCHEDULER_H

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/ChildProcess.h"
#include "base/Progress.h"
#include "base/Signals.h"
#include "base/TimePoint.h"
#include "isolation/PluginProcess.h"

/// The processes of the plugins: those that wait for room, those that run, and those that have ended.
class TProcessPool {
public:
    using TProcesses = std::vector<std::unique_ptr<TPluginProcess>>;

    /// The timeout is for each process, in seconds. The schema takes so many bytes of what a saved file can hold.
    TProcessPool(double timeout, size_t schemaBytes);

    /// Libraries to be run as soon as there is room.
    void Enqueue(const std::vector<TPluginLibrary*>& libraries);
    /// Starts as many as there is room for. The report of a library whose process cannot be started says why.
    void StartWaiting(const TPluginTask& task);
    /// Gives how many have ended since the last call.
    size_t FinishEnded();
    /// Stops those whose time is up.
    void EscalateDue(TTimePoint now);
    /// When EscalateDue has something to do.
    TTimePoint NextDeadline() const;
    /// Stops all, and starts no more.
    void Stop(const TOutcome& why);
    bool IsStopped() const { return static_cast<bool>(fStopped.reason); }
    /// Kills those that run, and forgets all.
    void Clear();

    bool IsWaiting() const { return !fWaiting.empty(); }
    bool IsRunning() const { return !fRunning.empty(); }
    std::vector<std::string> RunningPaths() const;
    /// In the order in which they were started, which is that of the libraries.
    const TProcesses& Started() const { return fStarted; }
    /// The one that sent the signal, or started the process that did; null if none did.
    TPluginProcess* FindSender(const TSignal& signal) const;

private:
    bool StartOne(TPluginLibrary& library, const TPluginTask& task);
    size_t StreamSize() const;

    const double fTimeout;
    TStorageRoom fRoom;
    const size_t fMostRunning;
    TOutcome fStopped;  // why no more are started
    std::deque<TPluginLibrary*> fWaiting;
    TProcesses fStarted;
    std::vector<TPluginProcess*> fRunning;
};

/// Runs libraries in processes of their own, several at a time, as long as there is time and nobody interrupts, and
/// stores the instances that they deliver, in the order of the libraries.
class TPluginScheduler {
public:
    using TListener = std::function<void(const TPluginProcess&)>;

    /// In all there are as many libraries as the count says, whose documents have so many bytes. The listener is called
    /// for each process that has ended, in the order of the libraries.
    TPluginScheduler(const TRunLimits& limits, size_t count, size_t schemaBytes, TListener listener);

    /// Runs them until all have ended, and stores their ordinary instances. The report of a library whose process could
    /// not be started says why.
    void Run(const std::vector<TPluginLibrary*>& libraries, const TPluginTask& task);
    /// Once all have run: stores what there was no room for before, and the instances of associations, and concludes
    /// the reports.
    void Conclude();
    /// The signal by which somebody interrupted it; 0: nobody did.
    int Interruption() const { return fInterruptions.Signal(); }

private:
    std::vector<TPluginProcess*> InOrderOfStart() const;
    bool MergeSome(EPass pass, const std::vector<TPluginProcess*>& order);
    void ReportEnded();
    void Wait(TTimePoint latest);
    void HandlePendingSignals();
    void KillOrphans();
    bool IsFromPlugin(const TSignal& signal);
    void Interrupt(ESignalMeaning meaning);

    const TRunLimits fLimits;
    const TListener fListener;
    TInterruptions fInterruptions;
    const TSubreaper fSubreaper;
    TProgress fProgress;
    TProcessPool fPool;
    // How many of the first processes are done: all their instances of the kind that is being merged are stored, and
    // the listener was called for them.
    size_t fMerged = 0;
    size_t fReported = 0;
};

#endif
