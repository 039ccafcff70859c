#ifndef KYR_HOST_EXPORT_RUNHISTORY_H
#define KYR_HOST_EXPORT_RUNHISTORY_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "export/HostKey.h"
#include "export/RunSink.h"

/// The runs that this process has handed on, for sinks that write text and cannot ask what is stored.
class TRunHistory {
public:
    /// Of each host that many runs count, the last ones.
    explicit TRunHistory(size_t keepRuns) : fKeepRuns(keepRuns) {}

    /// As a data base would that holds those runs.
    TVerdict Decide(const TRun& run) const;
    void Add(const TRun& run);

private:
    struct TKnownRun {
        std::string file, collectedAt;
        int64_t microseconds;
        uint64_t fingerprint;
    };
    struct THost {
        TKnownHost known;
        std::vector<TKnownRun> runs;  // the last one first
    };

    const THost* FindHost(const TRun& run) const;

    const size_t fKeepRuns;
    std::unordered_map<std::string, std::vector<THost>> fHosts;  // by their keys
};

#endif
