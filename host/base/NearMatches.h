#ifndef KYR_HOST_BASE_NEARMATCHES_H
#define KYR_HOST_BASE_NEARMATCHES_H

#include <string>
#include <vector>

/// The candidates that the user may have meant by a misspelt or shortened name: at most three, the nearest first.
std::vector<std::string> FindNearMatches(const std::string& name, const std::vector<std::string>& candidates);

/// A text to append to an error message: "; did you mean 'a' or 'b'?", or nothing if no candidate is near.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates);

#endif
