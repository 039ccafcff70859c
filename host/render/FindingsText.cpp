#include "render/FindingsText.h"

#include "base/Text.h"

namespace {

std::string PlaceText(const TPlace& place) {
    return VisibleText(place.file) + (place.line > 0 ? ":" + std::to_string(place.line) : "") + ": ";
}

void PrintFinding(const TFinding& finding, TOutput& output) {
    output.Write(output.Bold(PlaceText(finding.place) + NameOf(finding.rule->level) + ":") + " " +
                 VisibleText(finding.text) + " [" + finding.rule->id + "]\n");
    if (!finding.remedy.empty()) output.WriteWrapped(VisibleText(finding.remedy), "    ");
}

std::string CountText(size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

void PrintFindings(const TFindings& findings, TOutput& output) {
    for (const TFinding& finding : findings.All())
        if (finding.excuse.empty()) PrintFinding(finding, output);
    std::vector<std::string> counts;
    for (const ELevel level : {ELevel::eError, ELevel::eWarning, ELevel::eNote})
        if (const size_t count = findings.Count(level); count > 0) counts.push_back(CountText(count, NameOf(level)));
    if (!counts.empty()) output.Write(Join(counts) + "\n");
}

void PrintRules(TOutput& output) {
    for (const TRule& rule : AllRules()) {
        std::string start = std::string(rule.id) + "  " + NameOf(rule.level);
        start.resize(14, ' ');
        output.WriteWrapped(rule.title, start);
    }
}

void PrintRule(const TRule& rule, TOutput& output) {
    output.Write(output.Bold(std::string(rule.id) + ", " + NameOf(rule.level) + ": " + rule.title) + "\n\n");
    constexpr size_t kColumns = 80;
    output.WriteWrapped(rule.why, "", kColumns);
}
