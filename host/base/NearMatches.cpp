#include "base/NearMatches.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "base/Text.h"

namespace {

constexpr size_t kMostMatches = 3;

std::string ToLower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

// The Levenshtein distance: how many characters must be inserted, deleted or replaced to turn one text into the other.
size_t EditDistance(const std::string& from, const std::string& to) {
    std::vector<size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < to.size(); ++j) {
            const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// Near is a name with a few typing errors, and one that contains the text: "Processor" finds CIM_Processor. The
// distance is larger then, so that names with typing errors are listed first.
bool IsNear(const std::string& name, const std::string& candidate, size_t distance) {
    if (distance <= std::max<size_t>(2, name.size() / 4)) return true;
    return name.size() >= 3 && candidate.find(name) != std::string::npos;
}

}  // namespace

std::vector<std::string> FindNearMatches(const std::string& name, const std::vector<std::string>& candidates) {
    const std::string wanted = ToLower(name);
    std::vector<std::pair<size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const std::string lowered = ToLower(candidate);
        const size_t distance = EditDistance(wanted, lowered);
        if (IsNear(wanted, lowered, distance)) near.emplace_back(distance, candidate);
    }
    std::sort(near.begin(), near.end());
    std::vector<std::string> matches;
    for (size_t i = 0; i < near.size() && i < kMostMatches; ++i) matches.push_back(near[i].second);
    return matches;
}

std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates) {
    const std::vector<std::string> matches = FindNearMatches(name, candidates);
    return matches.empty() ? "" : "; did you mean '" + Join(matches, "' or '") + "'?";
}
