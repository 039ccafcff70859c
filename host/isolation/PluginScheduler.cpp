#include "isolation/PluginScheduler.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "isolation/Sandbox.h"
#include "states/PluginLibrary.h"

namespace {

constexpr std::chrono::milliseconds kPollInterval(20);  // in which a process may have delivered something

// At most so many signals are handled at once: a plugin can send them without end.
constexpr int kMostPending = 100'000;

// What the streams of plugins whose instances are not stored yet may hold together. The more they hold, the smaller is
// the stream of the next plugin.
constexpr size_t kMostHeld = size_t{512} << 20;
constexpr size_t kSmallestStream = size_t{1} << 20;

// The plugins that take longest on most machines. They start first, so that no processor waits for the last of them.
constexpr const char* kLong[] = {"software", "storage", "pci"};

}  // namespace

TProcessPool::TProcessPool(double timeout, size_t schemaBytes)
    : fTimeout(timeout), fRoom(schemaBytes), fMostRunning(std::max(4u, std::thread::hardware_concurrency())) {}

void TProcessPool::Enqueue(const std::vector<TPluginLibrary*>& libraries) {
    const auto isLong = [](const TPluginLibrary* library) {
        return std::find(std::begin(kLong), std::end(kLong), library->Name()) != std::end(kLong);
    };
    const auto first = fWaiting.insert(fWaiting.end(), libraries.begin(), libraries.end());
    std::stable_partition(first, fWaiting.end(), isLong);
}

void TProcessPool::StartWaiting(const TPluginTask& task) {
    while (IsWaiting() && fRunning.size() < fMostRunning && StartOne(*fWaiting.front(), task)) fWaiting.pop_front();
}

// False: the system has no room for it while others run.
bool TProcessPool::StartOne(TPluginLibrary& library, const TPluginTask& task) {
    if (IsStopped()) {
        library.report.end = {eNotAsked, fStopped.reason};
        return true;
    }
    try {
        task.sandbox.Prepare(library.granted);
        fStarted.push_back(std::make_unique<TPluginProcess>(library, task, fRoom, StreamSize(), fTimeout));
        fRunning.push_back(fStarted.back().get());
        return true;
    } catch (const std::system_error& e) {
        if (IsRunning()) return false;
        library.report.end = {eFailed, ReasonFor(EReason::eNotStarted, e.what())};
        return true;
    }
}

size_t TProcessPool::StreamSize() const {
    size_t held = 0;
    for (const auto& process : fStarted) held += process->BytesHeld();
    return std::max(kSmallestStream, (kMostHeld - std::min(held, kMostHeld)) / 4);
}

size_t TProcessPool::FinishEnded() {
    const auto isFinished = [](TPluginProcess* process) { return process->FinishIfEnded(); };
    const auto ended = std::remove_if(fRunning.begin(), fRunning.end(), isFinished);
    const auto count = static_cast<size_t>(fRunning.end() - ended);
    fRunning.erase(ended, fRunning.end());
    return count;
}

void TProcessPool::EscalateDue(TTimePoint now) {
    for (TPluginProcess* process : fRunning) process->EscalateIfDue(now);
}

TTimePoint TProcessPool::NextDeadline() const {
    TTimePoint next = TTimePoint::max();
    for (const TPluginProcess* process : fRunning) next = std::min(next, process->Deadline());
    return next;
}

void TProcessPool::Stop(const TOutcome& why) {
    if (!IsStopped()) fStopped = why;
    for (TPluginProcess* process : fRunning) process->Stop(why);
    fRoom.Stop();
}

void TProcessPool::Clear() {
    fRunning.clear();
    fStarted.clear();
}

std::vector<std::string> TProcessPool::RunningPaths() const {
    std::vector<std::string> paths;
    for (const TPluginProcess* process : fRunning) paths.push_back(process->Library().path);
    return paths;
}

TPluginProcess* TProcessPool::FindSender(const TSignal& signal) const {
    for (pid_t id = signal.sender; id > 0 && id != getpid(); id = ParentOf(id))
        for (const auto& process : fStarted)
            if (process->Includes(id)) return process.get();
    return nullptr;
}

TPluginScheduler::TPluginScheduler(const TRunLimits& limits, size_t count, size_t schemaBytes, TListener listener)
    : fLimits(limits),
      fListener(std::move(listener)),
      fInterruptions([this](const TSignal& signal) { return IsFromPlugin(signal); }),
      fProgress(count),
      fPool(limits.timeout, schemaBytes) {}

void TPluginScheduler::Run(const std::vector<TPluginLibrary*>& libraries, const TPluginTask& task) {
    fPool.Enqueue(libraries);
    while (fPool.IsWaiting() || fReported < fPool.Started().size()) {
        if (!fPool.IsRunning()) KillOrphans();  // which makes room for others
        fPool.StartWaiting(task);
        const bool isMore = MergeSome(EPass::eSmallParts, InOrderOfStart());
        ReportEnded();
        if (isMore || fPool.IsRunning()) Wait(isMore ? TClock::now() : TClock::now() + kPollInterval);
    }
    KillOrphans();
}

std::vector<TPluginProcess*> TPluginScheduler::InOrderOfStart() const {
    std::vector<TPluginProcess*> order;
    for (const auto& process : fPool.Started()) order.push_back(process.get());
    return order;
}

void TPluginScheduler::Conclude() {
    std::vector<TPluginProcess*> order = InOrderOfStart();
    // Those with little left come first, so that one that delivered without end cannot take their room.
    std::stable_sort(order.begin(), order.end(),
                     [](const TPluginProcess* a, const TPluginProcess* b) { return a->BytesHeld() < b->BytesHeld(); });
    for (const EPass pass : {EPass::eRest, EPass::eAssociations}) {
        fMerged = 0;
        while (MergeSome(pass, order)) Wait(TClock::now());
    }
    HandlePendingSignals();
    for (const auto& process : fPool.Started()) process->Merger().Conclude();
}

// Stores instances for the length of a time slice. True: there is more to store at once.
bool TPluginScheduler::MergeSome(EPass pass, const std::vector<TPluginProcess*>& order) {
    using EProgress = TInstanceMerger::EProgress;
    const TTimeSlice slice;
    for (; fMerged < order.size(); ++fMerged) {
        TPluginProcess& process = *order[fMerged];
        const bool hasEnded = process.IsFinished();
        const EProgress progress = process.Merge(pass, slice);
        if (progress == EProgress::eOutOfTime) return true;
        if (progress == EProgress::eTookAll && !hasEnded) return false;
    }
    return false;
}

void TPluginScheduler::ReportEnded() {
    for (; fReported < fMerged && fPool.Started()[fReported]->IsFinished(); ++fReported) {
        fProgress.Erase();  // the listener may print
        fListener(*fPool.Started()[fReported]);
    }
}

// Waits for a signal, such as SIGCHLD, and does what is due. Processes that have ended come first: they may have ended
// in time while the host was busy or itself stopped.
void TPluginScheduler::Wait(TTimePoint latest) {
    const TTimePoint deadline = fPool.IsStopped() ? TTimePoint::max() : fLimits.Latest();
    const TTimePoint next = std::min({deadline, fPool.NextDeadline(), latest, fProgress.NextMoment()});
    const ESignalMeaning meaning = fInterruptions.WaitUntil(next);
    fProgress.Count(fPool.FinishEnded());
    Interrupt(meaning);
    const TTimePoint now = TClock::now();
    if (now >= fLimits.Latest())
        fPool.Stop({eTimedOut, ReasonFor(EReason::eDeadlinePassed, SecondsText(fLimits.deadline))});
    fPool.EscalateDue(now);
    fProgress.Show(now, fPool.RunningPaths());
}

// What a plugin sent must not be left pending, since it would act on the host once signals are blocked no longer.
void TPluginScheduler::HandlePendingSignals() {
    for (int i = 0; i < kMostPending; ++i) {
        const ESignalMeaning meaning = fInterruptions.WaitUntil(TClock::now());
        if (meaning == ESignalMeaning::eNoSignal) return;
        Interrupt(meaning);
    }
}

// Signals first: whose they are shows only as long as their senders exist.
void TPluginScheduler::KillOrphans() {
    HandlePendingSignals();
    fSubreaper.KillChildren();
}

// A signal from a plugin does not interrupt the host, but is noted in the plugin's report. Which plugin has left a
// process that has lost its parents and its session shows nowhere.
bool TPluginScheduler::IsFromPlugin(const TSignal& signal) {
    TPluginProcess* const sender = fPool.FindSender(signal);
    if (sender == nullptr) return fSubreaper.Includes(signal.sender);
    sender->NoteSentSignal(signal.number);
    return true;
}

// The first time, what was collected so far is the result. The second time, this process ends at once.
void TPluginScheduler::Interrupt(ESignalMeaning meaning) {
    if (meaning == ESignalMeaning::eInterruption)
        fPool.Stop({eFailed, ReasonFor(EReason::eInterrupted, SignalName(fInterruptions.Signal()))});
    if (meaning != ESignalMeaning::eRepeatedInterruption) return;
    fPool.Clear();
    fSubreaper.KillChildren();
    fProgress.Erase();
    EndBySignal(fInterruptions.Signal());
}
