#ifndef KYR_BENCH_RACES_H
#define KYR_BENCH_RACES_H

#include "Race.h"

void RaceTokenisers(TTable& table);
void RacePopulating(TTable& table, unsigned instances);
void RaceProperties(TTable& table, unsigned records);
// With `large` up to 1,000,000 instances, which needs several gigabytes of memory.
void RaceScale(TTable& table, bool large);
void RaceAssociations(TTable& table, bool large);
/// What it costs kyr to run each of 20 small plugins in a process of its own.
void RaceIsolation(const TTable& table);

/// Runs each case twice, once to count its memory and once for callgrind, which dumps the instructions under the name
/// of the case. Prints a line "case|unit|units|allocations|peak bytes" for each.
void PrintCounted();

#endif
