#ifndef KYR_HOST_ISOLATION_PLUGINPROCESS_H
#define KYR_HOST_ISOLATION_PLUGINPROCESS_H

#include <sys/types.h>

#include <string>

#include "base/ChildProcess.h"
#include "base/Descriptor.h"
#include "base/TimePoint.h"
#include "isolation/InstanceMerger.h"
#include "isolation/PluginChild.h"
#include "isolation/RecordStream.h"
#include "isolation/Sandbox.h"
#include "model/CollectionState.h"

/// A plugin's process as the host sees it, from its start until nothing is left of it but the records. It leads a
/// session and a process group of its own. It is a state machine:
///
///     state         the process                    event     action                            next state
///     eRunning      works, within its time         eTimeUp   SIGTERM; 200 ms are left to it    eTerminating
///                                                  eStop     the same                          eTerminating
///                                                  eEnd      write the report                  eFinished
///     eTerminating  was sent SIGTERM, and may      eTimeUp   SIGKILL                           eKilled
///                   save its log before it does    eEnd      write the report                  eFinished
///     eKilled       can do nothing any more        eEnd      write the report                  eFinished
///                   (or is out of reach: another   eTimeUp   write the report, and do not      eAbandoned
///                   user's, or in the kernel)                wait for it
///     eFinished     is gone, with its group        none
///     eAbandoned    is there, a second after       none
///                   SIGKILL
///
/// An event that is not listed for a state changes nothing there.
class TPluginProcess {
public:
    /// Starts it, with a stream of at most that size. The timeout is in seconds. Raises std::system_error.
    TPluginProcess(TPluginLibrary& library, const TPluginTask& task, TStorageRoom& room, size_t streamSize,
                   double timeout);

    /// It is gone, or was given up.
    bool IsFinished() const { return fState >= EProcessState::eFinished; }
    /// When EscalateIfDue has something to do.
    TTimePoint Deadline() const { return fDeadline; }
    /// Sends SIGTERM once its time is up, and SIGKILL if it has not ended a little later.
    void EscalateIfDue(TTimePoint now);
    /// Sends SIGTERM. Its outcome gets the reason, unless SIGTERM was sent before.
    void Stop(const TOutcome& why);
    /// If it has ended, kills what is left of its group and writes in the library's report what became of it.
    bool FinishIfEnded();

    /// Whether the process with that number is this one, or was started by it; also when it is finished.
    bool Includes(pid_t process) const;
    /// Notes in the report, once, that it sent a signal to the host.
    void NoteSentSignal(int signal);

    /// Stores what it has delivered so far.
    TInstanceMerger::EProgress Merge(EPass pass, const TTimeSlice& slice);
    /// The bytes of what it has delivered that are still in memory.
    size_t BytesHeld() const { return fStream.BytesHeld(); }
    TInstanceMerger& Merger() { return fMerger; }
    TPluginLibrary& Library() const { return fLibrary; }

private:
    enum class EProcessState { eRunning, eTerminating, eKilled, eFinished, eAbandoned };
    enum class EEvent { eTimeUp, eStop, eEnd };
    struct TTransition;
    static const TTransition kTransitions[];

    void Handle(EEvent event);
    void Terminate();
    void Kill();
    void Finish();
    void Abandon();
    void WriteReport(const TProcessEnd& end);

    std::string Where() const;
    TOutcome FindOutcome(const TProcessEnd& end) const;
    void ReadPrinted();
    void CopyLog();

    TPluginLibrary& fLibrary;
    const double fTimeout;
    TRecordStream fStream;
    TInstanceMerger fMerger;
    const TSandbox& fSandbox;
    const TSharedSandboxResult fSandboxResult;
    const int fLogFile;    // of the host
    TDescriptor fPrinted;  // files in memory: what the plugin prints, and what is logged
    TDescriptor fLogged;
    TChildProcess fProcess;
    EProcessState fState = EProcessState::eRunning;
    TTimePoint fDeadline;
    TOutcome fStopped;  // why SIGTERM was sent
    bool fSentSignal = false;
};

#endif
