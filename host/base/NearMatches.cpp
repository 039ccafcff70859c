#include "base/NearMatches.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr size_t kMostMatches = 3;

std::string ToLower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

// How many characters must be put in, taken out or replaced to make one text of the other.
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

// A part of a name that somebody left the rest off counts as near, but behind a slip of the finger.
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
    std::string text;
    for (const std::string& match : FindNearMatches(name, candidates))
        text += (text.empty() ? "; did you mean '" : "' or '") + match;
    return text.empty() ? text : text + "'?";
}
