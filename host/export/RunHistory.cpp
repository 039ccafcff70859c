#include "export/RunHistory.h"

#include <algorithm>

#include "base/Text.h"

namespace {

void Complete(std::string& known, const std::string& told) {
    if (known.empty()) known = told;
}

}  // namespace

TVerdict TRunHistory::Decide(const TRun& run) const {
    const THost* const host = FindHost(run);
    if (host == nullptr) return {};
    const std::vector<TKnownRun>& runs = host->runs;
    for (const TKnownRun& known : runs)
        if (known.microseconds == run.collectedMicroseconds && known.fingerprint == run.fingerprint)
            return {TVerdict::eAlreadyStored};
    const auto older = std::find_if(runs.begin(), runs.end(), [&](const TKnownRun& known) {
        return known.microseconds <= run.collectedMicroseconds;
    });
    if (static_cast<size_t>(older - runs.begin()) >= fKeepRuns)
        return {TVerdict::eOlder, "'" + VisibleText(run.file) + "' is older than '" + VisibleText(runs.front().file) +
                                      "' of the same host and left out; --keep-runs " + std::to_string(fKeepRuns + 1) +
                                      " keeps more of them"};
    TVerdict verdict;
    if (older != runs.end()) verdict.neighbours.push_back({true, "", older->file, older->collectedAt});
    if (older != runs.begin()) verdict.neighbours.push_back({false, "", (older - 1)->file, (older - 1)->collectedAt});
    return verdict;
}

void TRunHistory::Add(const TRun& run) {
    const THost* found = FindHost(run);
    std::vector<THost>& hosts = fHosts[HostKeyOf(run)];
    if (found == nullptr) {
        hosts.push_back({{0, HostKeyOf(run), run.name, run.machineId, run.uuid, run.serial}, {}});
        found = &hosts.back();
    }
    THost& host = hosts[static_cast<size_t>(found - hosts.data())];
    Complete(host.known.uuid, run.uuid);
    Complete(host.known.serial, run.serial);
    const auto place = std::find_if(host.runs.begin(), host.runs.end(), [&](const TKnownRun& known) {
        return known.microseconds <= run.collectedMicroseconds;
    });
    host.runs.insert(place, {run.file, run.collectedAt, run.collectedMicroseconds, run.fingerprint});
}

const TRunHistory::THost* TRunHistory::FindHost(const TRun& run) const {
    const auto hosts = fHosts.find(HostKeyOf(run));
    if (hosts == fHosts.end()) return nullptr;
    const auto found = std::find_if(hosts->second.begin(), hosts->second.end(),
                                    [&](const THost& host) { return IsOfHost(run, host.known); });
    return found == hosts->second.end() ? nullptr : &*found;
}
