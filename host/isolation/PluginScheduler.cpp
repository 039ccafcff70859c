#include "isolation/PluginScheduler.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "states/PluginLibrary.h"

using namespace std::chrono_literals;

namespace {

constexpr auto kTimeSlice = 1ms;        // of work before we look round
constexpr auto kSignalDebounce = 20ms;  // in which who signals us and then our group, as timeout(1) does, means it once
constexpr auto kPollInterval = 20ms;    // in which something may have been delivered
constexpr int kDrainBudget = 1000;
constexpr int kMostPending = 64;  // one of each, and more where somebody sends without end

}  // namespace

TPluginScheduler::TPluginScheduler(const TRunLimits& limits, size_t count, TListener listener)
    : fTimeout(limits.timeout),
      fDeadlineSeconds(limits.deadline),
      fDeadline(limits.Latest()),
      fAtOnce(std::max(4u, std::thread::hardware_concurrency())),
      fListener(std::move(listener)),
      fProgress(count) {}

void TPluginScheduler::Run(const std::vector<TPluginLibrary*>& libraries, const TPluginTask& task) {
    fWaiting.assign(libraries.begin(), libraries.end());
    while (!fWaiting.empty() || fTold < fStarted.size()) {
        if (fRunning.empty()) EndOrphans();  // which makes room for others
        Start(task);
        const bool isMore = TakeInSome(false);
        TellEnded();
        if (isMore || !fRunning.empty()) Wait(isMore ? TClock::now() : TClock::now() + kPollInterval);
    }
    EndOrphans();
}

void TPluginScheduler::Conclude() {
    fTaken = 0;
    while (TakeInSome(true)) Wait(TClock::now());
    HandlePendingSignals();
    for (const auto& process : fStarted) process->Merge().Conclude();
}

void TPluginScheduler::Start(const TPluginTask& task) {
    while (!fWaiting.empty() && fRunning.size() < fAtOnce && StartOne(*fWaiting.front(), task)) fWaiting.pop_front();
}

// False: there is no room while others run.
bool TPluginScheduler::StartOne(TPluginLibrary& library, const TPluginTask& task) try {
    if (fStopped.reason) {
        library.report.end = {eNotAsked, fStopped.reason};
        return true;
    }
    fStarted.push_back(std::make_unique<TPluginProcess>(library, task, fTimeout));
    fRunning.push_back(fStarted.back().get());
    return true;
} catch (const std::system_error& e) {
    if (!fRunning.empty()) return false;
    library.report.end = {eFailed, ReasonFor(EReason::eNotStarted, e.what())};
    return true;
}

// While others still run. True: there is more.
bool TPluginScheduler::TakeInSome(bool associations) {
    const TTimePoint latest = TClock::now() + kTimeSlice;
    for (; fTaken < fStarted.size(); ++fTaken, fDrainSlices = 0) {
        TPluginProcess& process = *fStarted[fTaken];
        const bool hasEnded = process.IsFinished();
        const bool hasAll = process.Merge().Take(associations, latest) || hasEnded;
        if (TClock::now() >= latest) {
            LimitDraining(process);
            return true;
        }
        if (!hasAll) return false;
    }
    return false;
}

// What one can deliver in its time may take us longer to store.
void TPluginScheduler::LimitDraining(TPluginProcess& process) {
    if (!fStopped.reason && !process.IsStopped()) return;
    if (++fDrainSlices < kDrainBudget) return;
    process.Merge().Drop({eTimedOut, ReasonFor(EReason::eNoTimeToStore)});
}

void TPluginScheduler::Wait(TTimePoint latest) {
    TTimePoint next = fStopped.reason ? TTimePoint::max() : fDeadline;
    for (const TPluginProcess* process : fRunning) next = std::min(next, process->Deadline());
    const TSignal signal = fSignals.WaitUntil(std::min({next, latest, fProgress.NextMoment()}));
    const bool isInterruption = IsInterruption(signal);
    FinishEnded();  // first: they may have ended in time while we were busy or stopped
    if (isInterruption) Interrupt(signal.number);
    const TTimePoint now = TClock::now();
    if (now >= fDeadline) StopAll({eTimedOut, ReasonFor(EReason::eDeadlinePassed, SecondsText(fDeadlineSeconds))});
    for (TPluginProcess* process : fRunning) process->EscalateIfDue(now);
    fProgress.Show(now, RunningNames());
}

// A plugin has no say in when we end, but is named.
bool TPluginScheduler::IsInterruption(const TSignal& signal) const {
    if (signal.number == 0 || signal.number == SIGCHLD) return false;
    for (const auto& process : fStarted) {
        if (!process->Includes(signal.sender)) continue;
        process->NoteSentSignal(signal.number);
        return false;
    }
    return true;
}

// Nothing that a plugin sent is to be left when the signals are held no longer.
void TPluginScheduler::HandlePendingSignals() {
    for (int i = 0; i < kMostPending; ++i) {
        const TSignal signal = fSignals.WaitUntil(TClock::now());
        if (signal.number == 0) return;
        if (IsInterruption(signal)) Interrupt(signal.number);
    }
}

// As long as they are there one sees whose they are.
void TPluginScheduler::EndOrphans() {
    HandlePendingSignals();
    fOrphans.EndAll();
}

void TPluginScheduler::FinishEnded() {
    const auto finish = [this](TPluginProcess* process) {
        if (!process->HasEnded()) return false;
        process->Finish();
        fProgress.CountOne();
        return true;
    };
    fRunning.erase(std::remove_if(fRunning.begin(), fRunning.end(), finish), fRunning.end());
}

void TPluginScheduler::TellEnded() {
    for (; fTold < fTaken && fStarted[fTold]->IsFinished(); ++fTold) {
        fProgress.Erase();  // they may have something to say themselves
        fListener(*fStarted[fTold]);
    }
}

void TPluginScheduler::Interrupt(int signal) {
    const TTimePoint now = TClock::now();
    if (fInterruption != 0 && now < fInterrupted + kSignalDebounce) return;
    fInterrupted = now;
    if (fInterruption != 0) {
        fStarted.clear();  // which ends them
        fOrphans.EndAll();
        fProgress.Erase();
        EndBySignal(signal);
    }
    fInterruption = signal;
    StopAll({eFailed, ReasonFor(EReason::eInterrupted, SignalName(signal))});
}

void TPluginScheduler::StopAll(const TOutcome& why) {
    if (!fStopped.reason) fStopped = why;
    for (TPluginProcess* process : fRunning) process->Stop(why);
}

std::vector<std::string> TPluginScheduler::RunningNames() const {
    std::vector<std::string> names;
    for (const TPluginProcess* process : fRunning) names.push_back(process->Library().path);
    return names;
}
