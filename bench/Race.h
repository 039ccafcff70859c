#ifndef KYR_BENCH_RACE_H
#define KYR_BENCH_RACE_H

#include <functional>
#include <string>
#include <vector>

/// One way to do the work of a race. Only run is on the clock; prepare comes before it and finish behind it.
struct TContender {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare = [] {};
    std::function<void()> finish = [] {};
};

/// What a race is held to: how many times the peer's figure is ours. First what is asked for, 0 for nothing, then what
/// is hoped for.
struct TBar {
    std::string peer;
    enum EMeasure { eTime, eMemory, eGrowth } measure;  ///< eGrowth: the time again, but less is better
    double asked;
    double hoped;
};

/// The same work done in several ways, in turns, so that whatever slows the machine slows them all.
struct TRace {
    std::string name;
    std::string unit;  ///< of what one run does: "byte" gives MB/s, any other name nanoseconds for each
    double amount;     ///< how many units one run does
    std::vector<TContender> contenders = {};  ///< ours first
    std::vector<TBar> bars = {};
};

/// Runs races and prints one line for each contender, with the median of its rounds.
class TTable {
public:
    TTable(int rounds, std::string filter);

    void Run(const TRace& race);
    /// How the bars were met.
    void PrintBars() const;
    int Rounds() const { return fRounds; }
    /// Whether a race of that name is wanted; asked before costly preparations.
    bool Wants(const std::string& race) const { return race.find(fFilter) != std::string::npos; }

private:
    int fRounds;
    std::string fFilter;
    std::vector<std::string> fBars;
};

#endif
