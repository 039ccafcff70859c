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

#include "inventory/Library.h"
#include "isolation/ChildSetting.h"
#include "isolation/Signals.h"
#include "isolation/StreamingContainer.h"
#include "isolation/TapeReport.h"
#include "text/VisibleText.h"

namespace {

constexpr double kGrace = 0.2;  // seconds between asking it to end and ending it
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

TPluginProcess::TPluginProcess(TLibrary& library, const TPluginTask& task, double timeout)
    : fLibrary(library),
      fMerge(fTape, library, task.container),
      fTimeout(timeout),
      fDeadline(After(TClock::now(), timeout)),
      fPrinted(memfd_create("kyr-plugin", MFD_CLOEXEC)) {
    if (fPrinted < 0) Fail("no memory for what it prints");
    const pid_t parent = getpid();
    fProcess = fork();
    if (fProcess == 0) {
        SettleChild(parent, fPrinted, !task.logInFile);
        RunPluginChild(library, task, fTape);
    }
    if (fProcess < 0) {
        close(fPrinted);
        Fail("no process can be started for it");
    }
    fTape.Hide();
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

void TPluginProcess::Hurry(TMoment now) {
    if (now < fDeadline) return;
    if (!IsStopped()) return Stop({eTimedOut, "no answer within " + SecondsText(fTimeout)});
    Kill();
    fDeadline = TMoment::max();
}

void TPluginProcess::Stop(const TVerdict& why) {
    if (IsStopped()) return;
    fStopped = why;
    kill(fProcess, SIGTERM);
    fDeadline = After(TClock::now(), kGrace);
}

bool TPluginProcess::Includes(pid_t process) const {
    return process > 0 && (process == fProcess || getsid(process) == fProcess);
}

void TPluginProcess::Blame(int signal) {
    if (!std::exchange(fBlamed, true))
        fLibrary.report.notes.push_back({"", kyrLogError, "it sent " + SignalName(signal) + " to its host " + Where()});
}

void TPluginProcess::Finish() {
    Kill();  // before it is waited for: the number is still its own
    int status = 0;
    while (waitpid(fProcess, &status, 0) < 0 && errno == EINTR) {
    }
    TPluginReport& report = fLibrary.report;
    const bool readable = ReadReport(fTape, report);
    report.end = Judge(status);
    if (!readable && report.end.state == eComplete) report.end = {eFailed, kTapeSpoilt};
    ReadPrinted();
    close(std::exchange(fPrinted, -1));
}

std::string TPluginProcess::Where() const {
    std::string text = "at an unknown place";
    for (const TPlace& place : kPlaces)
        if (place.phase == fTape.Phase()) text = place.text;
    const std::string inHand = fTape.InHand();
    return inHand.empty() ? text : text + " at class " + inHand;
}

TVerdict TPluginProcess::Judge(int status) const {
    if (IsStopped()) return {fStopped.state, fStopped.reason + ", stopped " + Where()};
    if (fTape.IsFull()) return {eFailed, "it delivered more than there is room for"};
    if (WIFSIGNALED(status)) return {eFailed, SignalName(WTERMSIG(status)) + " " + Where()};
    if (fTape.Phase() == EPhase::eExiting && WEXITSTATUS(status) == 0) return {};
    return {eFailed, "it ended its process with exit status " + std::to_string(WEXITSTATUS(status)) + " " + Where()};
}

void TPluginProcess::ReadPrinted() {
    for (const std::string& line : ReadLastLines(fPrinted))
        fLibrary.report.notes.push_back({"", kyrLogStatus, VisibleText(line)});
}
