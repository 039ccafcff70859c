#ifndef KYR_HOST_BASE_NEARMATCHES_H
#define KYR_HOST_BASE_NEARMATCHES_H

#include <string>
#include <vector>

/// Those of the candidates that a person who wrote the name may have meant: at most three, the nearest first.
std::vector<std::string> FindNearMatches(const std::string& name, const std::vector<std::string>& candidates);

/// "; did you mean 'a' or 'b'?", or nothing.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates);

#endif
