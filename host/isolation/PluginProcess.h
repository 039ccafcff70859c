#ifndef KYR_HOST_ISOLATION_PLUGINPROCESS_H
#define KYR_HOST_ISOLATION_PLUGINPROCESS_H

#include <sys/types.h>

#include "base/TimePoint.h"
#include "isolation/InstanceMerger.h"
#include "isolation/PluginChild.h"
#include "isolation/RecordStream.h"
#include "model/CollectionState.h"

/// A plugin's process, seen from ours. It leads a session of its own.
class TPluginProcess {
public:
    /// Starts it. Raises std::system_error.
    TPluginProcess(TPluginLibrary& library, const TPluginTask& task, double timeout);
    ~TPluginProcess();
    TPluginProcess(const TPluginProcess&) = delete;
    TPluginProcess& operator=(const TPluginProcess&) = delete;

    /// It is no longer there, though it has not been waited for.
    bool HasEnded() const;
    bool IsFinished() const { return fPrinted < 0; }
    /// We ended it, or are about to.
    bool IsStopped() const { return static_cast<bool>(fStopped.reason); }
    /// When EscalateIfDue has something to do.
    TTimePoint Deadline() const { return fDeadline; }
    /// Stops it if its time is over, and again with more force if it does not stop.
    void EscalateIfDue(TTimePoint now);
    void Stop(const TOutcome& why);
    /// Whether that process is this one, or of its session; also when it is finished.
    bool Includes(pid_t process) const;
    /// Notes in the report, once, that it sent us a signal.
    void NoteSentSignal(int signal);
    /// Once it has ended: ends its group too, and writes in the library's report what became of it.
    void Finish();

    TPluginLibrary& Library() const { return fLibrary; }
    /// What it has delivered, by now.
    TInstanceMerger& Merge() { return fMerge; }

private:
    void Kill() const;
    std::string Where() const;
    TOutcome FindOutcome(int status) const;
    void ReadPrinted();

    TPluginLibrary& fLibrary;
    TRecordStream fStream;
    TInstanceMerger fMerge;
    const double fTimeout;
    TTimePoint fDeadline;
    TOutcome fStopped;  // why we stopped it
    bool fSentSignal = false;
    int fPrinted;
    pid_t fProcess = -1;
};

#endif
