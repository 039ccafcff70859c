#include "check/Findings.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "base/Text.h"

namespace {

bool IsBefore(const TFinding& a, const TFinding& b) {
    const auto order = [](const TFinding& finding) {
        return std::make_tuple(std::cref(finding.place.file), finding.place.line, std::string(finding.rule->id));
    };
    return order(a) < order(b);
}

const TRule& GetRule(const std::string& id) {
    if (const TRule* const rule = FindRule(id)) return *rule;
    throw std::logic_error("no rule " + id);
}

}  // namespace

std::string Quoted(std::string_view word) {
    constexpr size_t kLongest = 80;
    return "'" + CutText(VisibleText(word), kLongest) + "'";
}

void TFindings::Add(const char* rule, TPlace place, const std::string& text, const std::string& remedy) {
    constexpr size_t kLongest = 1000;
    if (++fCounts[{place.file, rule}] > kMostOfARule) return;
    place.cls = CutText(place.cls, kLongest);
    place.property = CutText(place.property, kLongest);
    fFindings.push_back({&GetRule(rule), std::move(place), CutText(text, kLongest), CutText(remedy, kLongest)});
}

bool TFindings::CountsOnly(const char* rule, const std::string& file) {
    const auto count = fCounts.find({file, rule});
    if (count == fCounts.end() || count->second < kMostOfARule) return false;
    ++count->second;
    return true;
}

void TFindings::AddRest() {
    for (auto& [fileAndRule, count] : fCounts) {
        if (count <= kMostOfARule) continue;
        TFinding rest{&GetRule(fileAndRule.second), {fileAndRule.first}, "", "mend those that are listed first"};
        rest.count = count - kMostOfARule;
        rest.text = std::to_string(rest.count) + " more of this rule are not listed";
        fFindings.push_back(std::move(rest));
        count = kMostOfARule;
    }
}

void TFindings::Sort() {
    AddRest();
    std::stable_sort(fFindings.begin(), fFindings.end(), IsBefore);
}

bool TFindings::HasErrorIn(const std::string& file) const {
    return std::any_of(fFindings.begin(), fFindings.end(), [&file](const TFinding& finding) {
        return finding.rule->level == ELevel::eError && finding.place.file == file;
    });
}

size_t TFindings::Count(ELevel level) const {
    size_t count = 0;
    for (const TFinding& finding : fFindings)
        if (finding.rule->level == level && finding.excuse.empty()) count += finding.count;
    return count;
}
