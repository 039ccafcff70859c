#include "check/Allowances.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "base/Text.h"
#include "check/Schema.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kRuleLength = 3;  // of an id
constexpr const char* kUnread = "it suppresses nothing: ";

constexpr const char* kLineForm = "RULE CLASS.PROPERTY: reason";

std::string FolderOf(const std::string& path) {
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// What is wrong with rule and reason; empty if nothing.
std::string FaultOf(const TAllowance& allowance) {
    if (allowance.rule.find_first_of(" ,;/") == kRuleLength) return "it names more than one rule";
    if (FindRule(allowance.rule) == nullptr) return "there is no rule " + Quoted(allowance.rule);
    if (allowance.reason.empty()) return "it gives no reason";
    return "";
}

void Add(TAllowance allowance, const std::string& form, TFindings& findings) {
    const std::string fault = FaultOf(allowance);
    if (fault.empty()) return findings.Allow(std::move(allowance));
    findings.Add("X01", allowance.place, kUnread + fault, "write each rule as " + form);
}

// "S19 EX_Pool.Size: reason"
void AddLine(const std::string& folder, const std::string& line, const TPlace& place, TFindings& findings) {
    const std::string text = Trimmed(line);
    if (text.empty() || text[0] == '#') return;
    TAllowance allowance;
    const size_t blank = std::min(text.find_first_of(" \t"), text.size());
    const size_t colon = std::min(text.find(':', blank), text.size());
    allowance.place = place;
    allowance.rule = text.substr(0, blank);
    allowance.what = Trimmed(text.substr(blank, colon - blank));
    allowance.reason = Trimmed(text.substr(std::min(colon + 1, text.size())));
    allowance.folder = folder;
    Add(allowance, kLineForm, findings);
}

bool IsOfWhat(const std::string& what, const TPlace& place) {
    if (what == "*" || what == fs::path(place.file).filename().string()) return true;
    if (place.cls.empty()) return false;
    const std::string cls = LowerName(place.cls), wanted = LowerName(what);
    return wanted == cls || wanted == cls + "." + LowerName(place.property);
}

bool Allows(const TAllowance& allowance, const TFinding& finding) {
    if (FindRule(allowance.rule) != finding.rule) return false;
    const TPlace& place = finding.place;
    if (!allowance.folder.empty()) return allowance.folder == FolderOf(place.file) && IsOfWhat(allowance.what, place);
    return allowance.place.file == place.file && allowance.firstLine <= place.line && place.line <= allowance.lastLine;
}

// Comments stand in documents; what a library does is no matter of an element there.
bool IsOfDocuments(const std::string& id) {
    const TRule* const rule = FindRule(id);
    return rule == nullptr || (rule->id[0] != 'L' && rule->id[0] != 'R');
}

// Whether files were checked that the rule is for.
bool IsChecked(const TAllowance& allowance, const std::vector<TTarget>& targets) {
    if (allowance.folder.empty()) return true;
    const char family = FindRule(allowance.rule)->id[0];
    return std::any_of(targets.begin(), targets.end(), [&](const TTarget& target) {
        const bool isFor = target.kind == TTarget::eLibrary || target.kind == TTarget::eFolder ? family == 'L'
                           : target.kind == TTarget::eCollection                               ? family == 'R'
                                                                 : family == 'D' || family == 'S' || family == 'V';
        return isFor && FolderOf(target.path) == allowance.folder;
    });
}

}  // namespace

void AddAllowances(const TMarkup& markup, TFindings& findings) {
    for (const TAllowingComment& comment : markup.comments) {
        TAllowance allowance;
        const size_t colon = std::min(comment.text.find(':'), comment.text.size());
        allowance.place = comment.element == nullptr ? TPlace{markup.file} : markup.PlaceOf(*comment.element);
        allowance.place.line = comment.line;
        allowance.rule = Trimmed(comment.text.substr(0, colon));
        allowance.reason = Trimmed(comment.text.substr(std::min(colon + 1, comment.text.size())));
        allowance.firstLine = comment.element == nullptr ? 1 : comment.element->line;
        allowance.lastLine = comment.element == nullptr ? 0 : comment.element->endLine;
        if (!IsOfDocuments(allowance.rule))
            findings.Add("X01", allowance.place, kUnread + (allowance.rule + " is not about documents"),
                         std::string("write it into ") + kAllowFile + " as " + kLineForm);
        else
            Add(allowance, "<!-- kyr-check RULE: reason -->", findings);
    }
}

void AddAllowances(const std::string& folder, TFindings& findings) {
    constexpr size_t kMostLines = 10000;
    constexpr std::uintmax_t kMostBytes = 1 << 20;
    const std::string path = (folder == "." ? fs::path() : fs::path(folder)) / kAllowFile;
    std::error_code error;
    // What a link leads to is none of the folder's; its lines would be printed.
    if (!fs::is_regular_file(fs::symlink_status(path, error))) return;
    if (fs::file_size(path, error) > kMostBytes)
        return findings.Add("X01", {path, 1}, kUnread + std::string("the file is too large (over 1 MiB)"),
                            "make it smaller");
    std::ifstream file(path);
    std::string line;
    for (size_t number = 1; number <= kMostLines && std::getline(file, line); ++number)
        AddLine(folder, line, {path, number}, findings);
}

void ApplyAllowances(const std::vector<TTarget>& targets, TFindings& findings) {
    std::set<std::string> folders;
    for (const TTarget& target : targets) folders.insert(FolderOf(target.path));
    for (const std::string& folder : folders) AddAllowances(folder, findings);
    for (TAllowance& allowance : findings.Allowances())
        for (TFinding& finding : findings.All())
            if (Allows(allowance, finding)) {
                finding.excuse = allowance.reason;
                finding.isExcusedInFile = allowance.folder.empty();
                allowance.isUsed = true;
            }
    for (const TAllowance& allowance : findings.Allowances())
        if (!allowance.isUsed && IsChecked(allowance, targets))
            findings.Add("X01", allowance.place, kUnread + ("there is no finding of " + allowance.rule + " there"),
                         "remove it");
}
