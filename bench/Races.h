#ifndef KYR_BENCH_RACES_H
#define KYR_BENCH_RACES_H

#include "Race.h"

void RaceTokenisers(TTable& table);
void RacePopulating(TTable& table, unsigned instances);
void RaceProperties(TTable& table, unsigned records);
/// With large, up to 1,000,000 instances, which takes some gigabytes.
void RaceScale(TTable& table, bool large);
void RaceAssociations(TTable& table);
/// What processes of their own cost 20 small plugins of the reference host.
void RaceIsolation(const TTable& table);

/// Does each counted piece of work once for instructions, which callgrind dumps under the case's name, and once for
/// memory; prints a line "case|unit|units|allocations|peak bytes" for each.
void PrintCounted();

#endif
