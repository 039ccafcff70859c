#include "isolation/PluginProcess.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "base/Signals.h"
#include "base/Text.h"
#include "isolation/ReportRecords.h"
#include "states/PluginLibrary.h"

namespace {

constexpr std::chrono::milliseconds kTerminationGrace(200);
constexpr std::chrono::milliseconds kKillGrace(1000);
constexpr off_t kPrintedBytes = 4096;
constexpr size_t kPrintedLines = 20;

constexpr const char* kNotEnded = ", but not ended: it is another user's process, or hangs in the kernel";

struct TPlace {
    EPhase phase;
    const char* text;
};

constexpr TPlace kPlaces[] = {
    {EPhase::eLoading, "while it was loaded or in its init entry"},
    {EPhase::eConstructing, "in a load-time constructor"},
    {EPhase::eInitialising, "in its init entry"},
    {EPhase::eDescribing, "in its info entry"},
    {EPhase::eOrdinary, "in its data entry"},
    {EPhase::eAssociations, "in its data entry"},
    {EPhase::eExiting, "in a destructor at exit"},
};

int OpenInMemory() {
    const int file = memfd_create("kyr-plugin", MFD_CLOEXEC);
    if (file < 0) throw std::system_error(errno, std::generic_category(), "no memory for what it prints");
    return file;
}

// The last lines, the first of which may be cut. The plugin can change the size of the file at any time, so that less
// may be read than was there.
std::vector<std::string> ReadLastLines(int descriptor) {
    const off_t size = lseek(descriptor, 0, SEEK_END);
    std::string text(static_cast<size_t>(std::min(std::max<off_t>(size, 0), kPrintedBytes)), '\0');
    const ssize_t length = pread(descriptor, text.data(), text.size(), size - static_cast<off_t>(text.size()));
    text.resize(length < 0 ? 0 : static_cast<size_t>(length));
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    if (lines.size() > kPrintedLines) lines.erase(lines.begin(), lines.end() - kPrintedLines);
    return lines;
}

}  // namespace

struct TPluginProcess::TTransition {
    EProcessState from;
    EEvent event;
    EProcessState to;
    void (TPluginProcess::*action)();
};

const TPluginProcess::TTransition TPluginProcess::kTransitions[] = {
    {EProcessState::eRunning, EEvent::eTimeUp, EProcessState::eTerminating, &TPluginProcess::Terminate},
    {EProcessState::eRunning, EEvent::eStop, EProcessState::eTerminating, &TPluginProcess::Terminate},
    {EProcessState::eRunning, EEvent::eEnd, EProcessState::eFinished, &TPluginProcess::Finish},
    {EProcessState::eTerminating, EEvent::eTimeUp, EProcessState::eKilled, &TPluginProcess::Kill},
    {EProcessState::eTerminating, EEvent::eEnd, EProcessState::eFinished, &TPluginProcess::Finish},
    {EProcessState::eKilled, EEvent::eEnd, EProcessState::eFinished, &TPluginProcess::Finish},
    {EProcessState::eKilled, EEvent::eTimeUp, EProcessState::eAbandoned, &TPluginProcess::Abandon},
};

TPluginProcess::TPluginProcess(TPluginLibrary& library, const TPluginTask& task, TStorageRoom& room, size_t streamSize,
                               double timeout)
    : fLibrary(library),
      fTimeout(timeout),
      fStream(streamSize),
      fMerger(library, task.container, room, timeout),
      fSandbox(task.sandbox),
      fLogFile(task.logFile),
      fPrinted(OpenInMemory()),
      fLogged(fLogFile < 0 ? -1 : OpenInMemory()),
      fProcess([&] {
          RunPluginChild(library, task, fStream, fSandboxResult, {fPrinted.Number(), fLogged.Number()});
      }),
      fDeadline(After(TClock::now(), timeout)) {
    fStream.HideFromChildren();
    fSandboxResult.HideFromChildren();
}

void TPluginProcess::Handle(EEvent event) {
    for (const TTransition& transition : kTransitions) {
        if (transition.from != fState || transition.event != event) continue;
        fState = transition.to;
        return (this->*transition.action)();
    }
}

void TPluginProcess::EscalateIfDue(TTimePoint now) {
    if (now < fDeadline) return;
    if (fState == EProcessState::eRunning) fStopped = {eTimedOut, ReasonFor(EReason::eNoAnswer, SecondsText(fTimeout))};
    Handle(EEvent::eTimeUp);
}

void TPluginProcess::Stop(const TOutcome& why) {
    if (fState == EProcessState::eRunning) fStopped = why;
    Handle(EEvent::eStop);
}

bool TPluginProcess::FinishIfEnded() {
    if (!IsFinished() && fProcess.HasEnded()) Handle(EEvent::eEnd);
    return IsFinished();
}

void TPluginProcess::Terminate() {
    fProcess.Terminate();
    fDeadline = TClock::now() + kTerminationGrace;
    fMerger.Hurry();
}

void TPluginProcess::Kill() {
    fProcess.Kill();
    fDeadline = TClock::now() + kKillGrace;
}

// What is left of the group must be killed before the process is waited for, as long as its number is surely its own.
void TPluginProcess::Finish() {
    fProcess.Kill();
    WriteReport(fProcess.Wait());
}

void TPluginProcess::Abandon() {
    fProcess.Abandon();
    WriteReport({});
}

void TPluginProcess::WriteReport(const TProcessEnd& end) {
    TPluginReport& report = fLibrary.report;
    const bool isReadable = ReadReport(fStream.Records(), report);
    if (const TOutcome outcome = FindOutcome(end); outcome.reason) report.end = outcome;
    report.sandbox = fSandbox.Describe(*fSandboxResult);
    if (!isReadable && report.end.state == eComplete) report.end = {eFailed, ReasonFor(EReason::eDeliveryDamaged)};
    ReadPrinted();
    CopyLog();
    fPrinted.Close();
    fLogged.Close();
    fStream.Close();
}

bool TPluginProcess::Includes(pid_t process) const {
    return process > 0 && (process == fProcess.Id() || getsid(process) == fProcess.Id());
}

void TPluginProcess::NoteSentSignal(int signal) {
    if (!std::exchange(fSentSignal, true))
        fLibrary.report.messages.push_back(
            {"", kyrLogError, "it sent " + SignalName(signal) + " to its host " + Where()});
}

// The report is read once the process has ended, so until then the stream is needed whole.
TInstanceMerger::EProgress TPluginProcess::Merge(EPass pass, const TTimeSlice& slice) {
    const TInstanceMerger::EProgress progress = fMerger.Take(fStream.Records(), pass, slice);
    if (IsFinished()) fStream.Release(fMerger.BytesTaken());
    return progress;
}

std::string TPluginProcess::Where() const {
    std::string text = "at an unknown place";
    for (const TPlace& place : kPlaces)
        if (place.phase == fStream.Phase()) text = place.text;
    const std::string currentClass = fStream.CurrentClass();
    return currentClass.empty() ? text : text + " at class " + currentClass;
}

TOutcome TPluginProcess::FindOutcome(const TProcessEnd& end) const {
    const auto at = [this](TReason reason) {
        reason.place = Where() + (fState == EProcessState::eAbandoned ? kNotEnded : "");
        reason.className = fStream.CurrentClass();
        return reason;
    };
    const std::string refusal = fSandbox.Refusal(*fSandboxResult);
    if (!refusal.empty()) return {eRefused, ReasonFor(EReason::eSandboxMissing, refusal)};
    if (fStopped.reason) return {fStopped.state, at(fStopped.reason)};
    if (fStream.IsFull()) return {eFailed, ReasonFor(EReason::eTooMuchDelivered)};
    if (end.signal != 0) return {eFailed, at(ReasonFor(EReason::eCrashed, SignalName(end.signal)))};
    if (fStream.Phase() == EPhase::eExiting && end.exitStatus == 0) return {};
    return {eFailed, at(ReasonFor(EReason::eExited, std::to_string(end.exitStatus)))};
}

void TPluginProcess::ReadPrinted() {
    for (const std::string& line : ReadLastLines(fPrinted.Number())) {
        fLibrary.report.messages.push_back({"", kyrLogStatus, VisibleText(line)});
        fLibrary.report.log.push_back({false, kyrLogStatus, "printed: " + VisibleText(line)});
    }
}

// The core flushes each line, so that what is written past it stands behind what it wrote before.
void TPluginProcess::CopyLog() {
    char bytes[1 << 16];
    off_t offset = 0;
    for (ssize_t count = 1; fLogFile >= 0 && count > 0; offset += count) {
        count = pread(fLogged.Number(), bytes, sizeof bytes, offset);
        if (count > 0) count = write(fLogFile, bytes, static_cast<size_t>(count));
    }
}
