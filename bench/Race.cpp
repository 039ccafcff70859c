#include "Race.h"

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Memory.h"

namespace {

struct TFigures {
    std::vector<double> nanoseconds;
    double peak = 0;
    double allocations = 0;

    double Median() const {
        std::vector<double> sorted = nanoseconds;
        std::nth_element(sorted.begin(), sorted.begin() + sorted.size() / 2, sorted.end());
        return sorted[sorted.size() / 2];
    }
};

// CPU time, so that other load on the machine does not count.
double Now() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

void MeasureMemory(const TContender& contender, TFigures& figures) {
    contender.prepare();
    TMemoryMeter meter;
    contender.run();
    meter.Stop();
    figures.peak = static_cast<double>(meter.Peak());
    figures.allocations = static_cast<double>(meter.Allocations());
    contender.finish();
}

// malloc joins the small blocks that were freed when it is asked for a large one. Those of another contender are joined
// before the time of this one.
void JoinFreeBlocks() {
    void* volatile block = std::malloc(1 << 16);
    std::free(block);
}

void MeasureTime(const TContender& contender, TFigures& figures) {
    contender.prepare();
    JoinFreeBlocks();
    const double start = Now();
    contender.run();
    figures.nanoseconds.push_back(Now() - start);
    contender.finish();
}

std::string Speed(const TRace& race, double nanoseconds) {
    char text[64];
    if (race.unit == "byte") {
        std::snprintf(text, sizeof text, "%.0f MB/s", race.amount / nanoseconds * 1000);
    } else {
        std::snprintf(text, sizeof text, "%.*f ns a %s", nanoseconds < race.amount * 10 ? 1 : 0,
                      nanoseconds / race.amount, race.unit.c_str());
    }
    return text;
}

void PrintLine(const TRace& race, std::size_t i, const std::vector<TFigures>& figures) {
    const double median = figures[i].Median();
    std::printf("%-22s %-26s %10.2f %22s %8.2f %10.2f %12.0f\n", race.name.c_str(), race.contenders[i].name.c_str(),
                median / 1e6, Speed(race, median).c_str(), median / figures.front().Median(), figures[i].peak / 1e6,
                figures[i].allocations);
}

std::string Met(const TTarget& target, double ratio, double limit) {
    if (limit == 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f %s", limit,
                  (target.measure < TTarget::eGrowth ? ratio >= limit : ratio <= limit) ? "met" : "missed");
    return text;
}

double FigureFor(const TRace& race, TTarget::EMeasure measure, const TFigures& peer, const TFigures& ours) {
    switch (measure) {
        case TTarget::eMemory:
            return peer.peak / ours.peak;
        case TTarget::eBytesForEach:
            return peer.peak / race.amount;
        case TTarget::eMicrosecondsForEach:
            return peer.Median() / race.amount / 1e3;
        default:
            return peer.Median() / ours.Median();
    }
}

std::string Judge(const TRace& race, const TTarget& target, const TFigures& peer, const TFigures& ours) {
    static const char* const kMeasures[] = {"time", "memory", "growth", "bytes", "us"};
    const double ratio = FigureFor(race, target.measure, peer, ours);
    char text[160];
    std::snprintf(text, sizeof text, "%-22s %-26s %-8s %6.2f  %-14s %-14s", race.name.c_str(), target.peer.c_str(),
                  kMeasures[target.measure], ratio, Met(target, ratio, target.required).c_str(),
                  Met(target, ratio, target.wanted).c_str());
    return text;
}

}  // namespace

TTable::TTable(int rounds, std::string filter) : fRounds(rounds), fFilter(std::move(filter)) {
    std::printf("%-22s %-26s %10s %22s %8s %10s %12s\n", "race", "contender", "CPU ms", "speed", "x ours", "peak MB",
                "allocations");
}

void TTable::Run(const TRace& race) {
    std::vector<TFigures> figures(race.contenders.size());
    for (std::size_t i = 0; i < figures.size(); ++i) MeasureMemory(race.contenders[i], figures[i]);
    for (int round = 0; round < fRounds; ++round) {
        for (std::size_t i = 0; i < figures.size(); ++i) MeasureTime(race.contenders[i], figures[i]);
    }

    for (std::size_t i = 0; i < figures.size(); ++i) PrintLine(race, i, figures);
    for (const TTarget& target : race.targets) {
        for (std::size_t i = 0; i < figures.size(); ++i) {
            if (race.contenders[i].name == target.peer)
                fTargets.push_back(Judge(race, target, figures[i], figures.front()));
        }
    }
    std::fflush(stdout);
}

void TTable::PrintTargets() const {
    std::printf("\n%-22s %-26s %-8s %6s  %-14s %-14s\n", "race", "beside", "in", "figure", "asked", "hoped");
    for (const std::string& target : fTargets) std::printf("%s\n", target.c_str());
}
