#ifndef KYR_HOST_BASE_NEARMATCHES_H
#define KYR_HOST_BASE_NEARMATCHES_H

#include <cstddef>
#include <string>
#include <vector>

/// How many characters must be inserted, deleted, replaced or exchanged with their neighbour to turn one text into the
/// other (the distance of Damerau and Levenshtein, no place edited twice).
size_t EditDistance(const std::string& from, const std::string& to);

/// The candidates that the user may have meant by a misspelt or shortened name: at most three, the nearest first.
std::vector<std::string> FindNearMatches(const std::string& name, const std::vector<std::string>& candidates);

/// A text to append to an error message: "; did you mean 'a' or 'b'?", or nothing if no candidate is near.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates);

#endif
