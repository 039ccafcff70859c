#ifndef KYR_HOST_RENDER_DIFFERENCETEXT_H
#define KYR_HOST_RENDER_DIFFERENCETEXT_H

#include "base/Output.h"

struct TDifference;

/// Prints what differs between two collections for people: class by class, then what could not be compared, then a line
/// that counts.
void PrintDifference(const TDifference& difference, TOutput& output);

#endif
