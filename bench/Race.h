#ifndef KYR_BENCH_RACE_H
#define KYR_BENCH_RACE_H

#include <functional>
#include <string>
#include <vector>

/// One program or library in a comparison. Only `run` is timed; `prepare` is called before it and `finish` after it.
struct TContender {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare = [] {};
    std::function<void()> finish = [] {};
};

/// A target of a comparison: the figure must reach `required` (0: no requirement) and should reach `wanted`. Of time
/// and memory it is that of a peer divided by ours, and must be at least that; of growth the same quotient of times, at
/// most that. The others are of our contender named: the peak of memory for each unit, and the microseconds for each.
struct TTarget {
    std::string peer;
    enum EMeasure { eTime, eMemory, eGrowth, eBytesForEach, eMicrosecondsForEach } measure;
    double required;
    double wanted;
};

/// The same work done by several contenders in turns, so that other load on the machine slows them all alike.
struct TRace {
    std::string name;
    std::string unit;  ///< what one run processes: bytes are shown as MB/s, any other unit as nanoseconds for each
    double amount;     ///< how many units one run processes
    std::vector<TContender> contenders = {};  ///< ours first
    std::vector<TTarget> targets = {};
};

/// Runs comparisons and prints one line for each contender with the median of its rounds.
class TTable {
public:
    TTable(int rounds, std::string filter);

    void Run(const TRace& race);
    /// Prints which targets were met.
    void PrintTargets() const;
    int Rounds() const { return fRounds; }
    /// Whether the filter selects this comparison; to be called before costly preparations.
    bool Wants(const std::string& race) const { return race.find(fFilter) != std::string::npos; }

private:
    int fRounds;
    std::string fFilter;
    std::vector<std::string> fTargets;
};

#endif
