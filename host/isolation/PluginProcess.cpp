#include "isolation/PluginProcess.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "base/Signals.h"
#include "base/Text.h"
#include "isolation/ChildSetting.h"
#include "isolation/PluginContainer.h"
#include "isolation/ReportRecords.h"
#include "states/PluginLibrary.h"

namespace {

constexpr double kTerminationGrace = 0.2;  // seconds between asking it to end and ending it
constexpr off_t kPrintedBytes = 4096;
constexpr size_t kPrintedLines = 20;

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

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

// The last lines, the first of which may be cut.
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

TPluginProcess::TPluginProcess(TPluginLibrary& library, const TPluginTask& task, double timeout)
    : fLibrary(library),
      fMerge(fStream, library, task.container),
      fTimeout(timeout),
      fDeadline(After(TClock::now(), timeout)),
      fPrinted(memfd_create("kyr-plugin", MFD_CLOEXEC)) {
    if (fPrinted < 0) Fail("no memory for what it prints");
    const pid_t parent = getpid();
    fProcess = fork();
    if (fProcess == 0) {
        PrepareChild(parent, fPrinted, !task.logInFile);
        RunPluginChild(library, task, fStream);
    }
    if (fProcess < 0) {
        close(fPrinted);
        Fail("no process can be started for it");
    }
    fStream.Hide();
}

TPluginProcess::~TPluginProcess() {
    if (IsFinished()) return;
    close(fPrinted);
    Kill();
    waitpid(fProcess, nullptr, 0);
}

// It alone too: its group is there only once it runs.
void TPluginProcess::Kill() const {
    kill(-fProcess, SIGKILL);
    kill(fProcess, SIGKILL);
}

bool TPluginProcess::HasEnded() const {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(fProcess), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

void TPluginProcess::EscalateIfDue(TTimePoint now) {
    if (now < fDeadline) return;
    if (!IsStopped()) return Stop({eTimedOut, ReasonFor(EReason::eNoAnswer, SecondsText(fTimeout))});
    Kill();
    fDeadline = TTimePoint::max();
}

void TPluginProcess::Stop(const TOutcome& why) {
    if (IsStopped()) return;
    fStopped = why;
    kill(fProcess, SIGTERM);
    fDeadline = After(TClock::now(), kTerminationGrace);
}

bool TPluginProcess::Includes(pid_t process) const {
    return process > 0 && (process == fProcess || getsid(process) == fProcess);
}

void TPluginProcess::NoteSentSignal(int signal) {
    if (!std::exchange(fSentSignal, true))
        fLibrary.report.messages.push_back(
            {"", kyrLogError, "it sent " + SignalName(signal) + " to its host " + Where()});
}

void TPluginProcess::Finish() {
    Kill();  // before it is waited for: the number is still its own
    int status = 0;
    while (waitpid(fProcess, &status, 0) < 0 && errno == EINTR) {
    }
    TPluginReport& report = fLibrary.report;
    const bool readable = ReadReport(fStream, report);
    report.end = FindOutcome(status);
    if (!readable && report.end.state == eComplete) report.end = {eFailed, ReasonFor(EReason::eDeliveryDamaged)};
    ReadPrinted();
    close(std::exchange(fPrinted, -1));
}

std::string TPluginProcess::Where() const {
    std::string text = "at an unknown place";
    for (const TPlace& place : kPlaces)
        if (place.phase == fStream.Phase()) text = place.text;
    const std::string currentClass = fStream.CurrentClass();
    return currentClass.empty() ? text : text + " at class " + currentClass;
}

TOutcome TPluginProcess::FindOutcome(int status) const {
    const auto at = [this](TReason reason) {
        reason.place = Where();
        reason.className = fStream.CurrentClass();
        return reason;
    };
    if (IsStopped()) return {fStopped.state, at(fStopped.reason)};
    if (fStream.IsFull()) return {eFailed, ReasonFor(EReason::eTooMuchDelivered)};
    if (WIFSIGNALED(status)) return {eFailed, at(ReasonFor(EReason::eCrashed, SignalName(WTERMSIG(status))))};
    if (fStream.Phase() == EPhase::eExiting && WEXITSTATUS(status) == 0) return {};
    return {eFailed, at(ReasonFor(EReason::eExited, std::to_string(WEXITSTATUS(status))))};
}

void TPluginProcess::ReadPrinted() {
    for (const std::string& line : ReadLastLines(fPrinted))
        fLibrary.report.messages.push_back({"", kyrLogStatus, VisibleText(line)});
}
