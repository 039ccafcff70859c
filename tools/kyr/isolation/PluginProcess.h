#ifndef PLUGINPROCESS_H
#define PLUGINPROCESS_H

#include <sys/types.h>

#include "isolation/PluginChild.h"
#include "isolation/Tape.h"
#include "isolation/TapeMerge.h"
#include "isolation/TimeSpan.h"
#include "states/State.h"

/// A plugin's process, seen from ours. It leads a session of its own.
class TPluginProcess {
public:
    /// Starts it. Raises std::system_error.
    TPluginProcess(TLibrary& library, const TPluginTask& task, double timeout);
    ~TPluginProcess();
    TPluginProcess(const TPluginProcess&) = delete;
    TPluginProcess& operator=(const TPluginProcess&) = delete;

    /// It is no longer there, though it has not been waited for.
    bool HasEnded() const;
    bool IsFinished() const { return fPrinted < 0; }
    /// We ended it, or are about to.
    bool IsStopped() const { return !fStopped.reason.empty(); }
    /// When Hurry has something to do.
    TMoment Deadline() const { return fDeadline; }
    /// Stops it if its time is over, and again with more force if it does not stop.
    void Hurry(TMoment now);
    void Stop(const TVerdict& why);
    /// Whether that process is this one, or of its session; also when it is finished.
    bool Includes(pid_t process) const;
    /// Notes in the report, once, that it sent us a signal.
    void Blame(int signal);
    /// Once it has ended: ends its group too, and writes in the library's report what became of it.
    void Finish();

    TLibrary& Library() const { return fLibrary; }
    /// What it has delivered, by now.
    TTapeMerge& Merge() { return fMerge; }

private:
    void Kill() const;
    std::string Where() const;
    TVerdict Judge(int status) const;
    void ReadPrinted();

    TLibrary& fLibrary;
    TTape fTape;
    TTapeMerge fMerge;
    const double fTimeout;
    TMoment fDeadline;
    TVerdict fStopped;  // why we stopped it
    bool fBlamed = false;
    int fPrinted;
    pid_t fProcess = -1;
};

#endif
