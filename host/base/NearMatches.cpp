#include "base/NearMatches.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "base/Text.h"

namespace {

constexpr size_t kMostMatches = 3;

bool IsTransposed(const std::string& from, size_t i, const std::string& to, size_t j) {
    return i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j];
}

// Near is a name with a few typing errors, and one that contains the text: "Processor" finds CIM_Processor. The
// distance is larger then, so that names with typing errors are listed first.
bool IsNear(const std::string& name, const std::string& candidate, size_t distance) {
    const size_t mostErrors = name.size() < 3 ? name.size() / 2 : std::max<size_t>(2, name.size() / 4);
    if (distance <= mostErrors && distance < candidate.size()) return true;
    return name.size() >= 3 && candidate.find(name) != std::string::npos;
}

}  // namespace

size_t EditDistance(const std::string& from, const std::string& to) {
    std::vector<size_t> before, above(to.size() + 1), row(to.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i) {
        before = std::exchange(above, row);
        row[0] = i + 1;
        for (size_t j = 0; j < to.size(); ++j) {
            row[j + 1] = std::min({above[j] + (from[i] == to[j] ? 0 : 1), row[j] + 1, above[j + 1] + 1});
            if (IsTransposed(from, i, to, j)) row[j + 1] = std::min(row[j + 1], before[j - 1] + 1);
        }
    }
    return row.back();
}

std::vector<std::string> FindNearMatches(const std::string& name, const std::vector<std::string>& candidates) {
    const std::string wanted = LowerCase(name);
    std::vector<std::pair<size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const std::string lowered = LowerCase(candidate);
        const size_t distance = EditDistance(wanted, lowered);
        if (IsNear(wanted, lowered, distance)) near.emplace_back(distance, candidate);
    }
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());  // an account and its group have one name
    std::vector<std::string> matches;
    for (size_t i = 0; i < near.size() && i < kMostMatches; ++i) matches.push_back(near[i].second);
    return matches;
}

std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates) {
    const std::vector<std::string> matches = FindNearMatches(name, candidates);
    return matches.empty() ? "" : "; did you mean '" + Join(matches, "' or '") + "'?";
}
