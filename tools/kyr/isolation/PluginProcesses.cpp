#include "isolation/PluginProcesses.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "inventory/Library.h"

using namespace std::chrono_literals;

namespace {

constexpr auto kStroke = 1ms;  // of work before we look round
constexpr auto kEcho = 20ms;   // in which who signals us and then our group, as timeout(1) does, means it once
constexpr auto kPause = 20ms;  // in which something may have been delivered
constexpr int kMostOvertime = 1000;
constexpr int kMostPending = 64;  // one of each, and more where somebody sends without end

}  // namespace

TPluginProcesses::TPluginProcesses(const TSessionOptions& options, size_t count, TListener listener)
    : fTimeout(options.timeout),
      fDeadlineSeconds(options.deadline),
      fDeadline(options.Latest()),
      fAtOnce(std::max(4u, std::thread::hardware_concurrency())),
      fListener(std::move(listener)),
      fProgress(count) {}

void TPluginProcesses::Run(const std::vector<TLibrary*>& libraries, const TPluginTask& task) {
    fWaiting.assign(libraries.begin(), libraries.end());
    while (!fWaiting.empty() || fTold < fStarted.size()) {
        if (fRunning.empty()) EndOrphans();  // which makes room for others
        Start(task);
        const bool isMore = TakeInSome(false);
        TellEnded();
        if (isMore || !fRunning.empty()) Wait(isMore ? TClock::now() : TClock::now() + kPause);
    }
    EndOrphans();
}

void TPluginProcesses::Conclude() {
    fTaken = 0;
    while (TakeInSome(true)) Wait(TClock::now());
    HeedPending();
    for (const auto& process : fStarted) process->Merge().Conclude();
}

void TPluginProcesses::Start(const TPluginTask& task) {
    while (!fWaiting.empty() && fRunning.size() < fAtOnce && StartOne(*fWaiting.front(), task)) fWaiting.pop_front();
}

// False: there is no room while others run.
bool TPluginProcesses::StartOne(TLibrary& library, const TPluginTask& task) try {
    if (!fStopped.reason.empty()) {
        library.report.end = {eNotAsked, fStopped.reason};
        return true;
    }
    fStarted.push_back(std::make_unique<TPluginProcess>(library, task, fTimeout));
    fRunning.push_back(fStarted.back().get());
    return true;
} catch (const std::system_error& e) {
    if (!fRunning.empty()) return false;
    library.report.end = {eFailed, e.what()};
    return true;
}

// While others still run. True: there is more.
bool TPluginProcesses::TakeInSome(bool associations) {
    const TMoment latest = TClock::now() + kStroke;
    for (; fTaken < fStarted.size(); ++fTaken, fOvertime = 0) {
        TPluginProcess& process = *fStarted[fTaken];
        const bool hasEnded = process.IsFinished();
        const bool hasAll = process.Merge().Take(associations, latest) || hasEnded;
        if (TClock::now() >= latest) {
            CountOvertime(process);
            return true;
        }
        if (!hasAll) return false;
    }
    return false;
}

// What one can deliver in its time may take us longer to store.
void TPluginProcesses::CountOvertime(TPluginProcess& process) {
    if (fStopped.reason.empty() && !process.IsStopped()) return;
    if (++fOvertime < kMostOvertime) return;
    process.Merge().Drop({eTimedOut, "there was no time left to store all that it delivered"});
}

void TPluginProcesses::Wait(TMoment latest) {
    TMoment next = fStopped.reason.empty() ? fDeadline : TMoment::max();
    for (const TPluginProcess* process : fRunning) next = std::min(next, process->Deadline());
    const TSignal signal = fSignals.WaitUntil(std::min({next, latest, fProgress.NextMoment()}));
    const bool isInterruption = IsInterruption(signal);
    FinishEnded();  // first: they may have ended in time while we were busy or stopped
    if (isInterruption) Interrupt(signal.number);
    const TMoment now = TClock::now();
    if (now >= fDeadline) StopAll({eTimedOut, "the deadline of " + SecondsText(fDeadlineSeconds) + " had passed"});
    for (TPluginProcess* process : fRunning) process->Hurry(now);
    fProgress.Show(now, RunningNames());
}

// A plugin has no say in when we end, but is named.
bool TPluginProcesses::IsInterruption(const TSignal& signal) const {
    if (signal.number == 0 || signal.number == SIGCHLD) return false;
    for (const auto& process : fStarted) {
        if (!process->Includes(signal.sender)) continue;
        process->Blame(signal.number);
        return false;
    }
    return true;
}

// Nothing that a plugin sent is to be left when the signals are held no longer.
void TPluginProcesses::HeedPending() {
    for (int i = 0; i < kMostPending; ++i) {
        const TSignal signal = fSignals.WaitUntil(TClock::now());
        if (signal.number == 0) return;
        if (IsInterruption(signal)) Interrupt(signal.number);
    }
}

// As long as they are there one sees whose they are.
void TPluginProcesses::EndOrphans() {
    HeedPending();
    fOrphans.EndAll();
}

void TPluginProcesses::FinishEnded() {
    const auto finish = [this](TPluginProcess* process) {
        if (!process->HasEnded()) return false;
        process->Finish();
        fProgress.CountOne();
        return true;
    };
    fRunning.erase(std::remove_if(fRunning.begin(), fRunning.end(), finish), fRunning.end());
}

void TPluginProcesses::TellEnded() {
    for (; fTold < fTaken && fStarted[fTold]->IsFinished(); ++fTold) {
        fProgress.Erase();  // they may have something to say themselves
        fListener(*fStarted[fTold]);
    }
}

void TPluginProcesses::Interrupt(int signal) {
    const TMoment now = TClock::now();
    if (fInterruption != 0 && now < fInterrupted + kEcho) return;
    fInterrupted = now;
    if (fInterruption != 0) {
        fStarted.clear();  // which ends them
        fOrphans.EndAll();
        fProgress.Erase();
        EndBySignal(signal);
    }
    fInterruption = signal;
    StopAll({eFailed, "interrupted by " + SignalName(signal)});
}

void TPluginProcesses::StopAll(const TVerdict& why) {
    if (fStopped.reason.empty()) fStopped = why;
    for (TPluginProcess* process : fRunning) process->Stop(why);
}

std::vector<std::string> TPluginProcesses::RunningNames() const {
    std::vector<std::string> names;
    for (const TPluginProcess* process : fRunning) names.push_back(process->Library().path);
    return names;
}
