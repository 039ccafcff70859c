#include "inventory/DocumentMistakes.h"

#include <algorithm>
#include <iterator>

#include "base/ExitStatus.h"
#include "check/Check.h"

namespace {

// Errors that cost no more than a class or a property, or that another mistake leads to. They are told where nothing
// else is wrong.
constexpr const char* kLessLikely[] = {"D15", "S01", "S03", "S04", "S07", "S12"};

bool IsRefused(const TFinding& finding) {
    const std::string id = finding.rule->id;
    if (finding.rule->level != ELevel::eError || (id[0] != 'D' && id[0] != 'S')) return false;
    return std::find(std::begin(kLessLikely), std::end(kLessLikely), id) == std::end(kLessLikely);
}

bool IsError(const TFinding& finding) { return finding.rule->level == ELevel::eError; }

// "EX_Disk.Size: ", or nothing if the text names the class.
std::string NameFor(const TFinding& finding) {
    const TPlace& place = finding.place;
    if (place.cls.empty() || finding.text.find(place.cls) != std::string::npos) return "";
    return place.cls + (place.property.empty() ? "" : "." + place.property) + ": ";
}

TReason ReasonOf(const TFinding& finding) {
    const std::string line = finding.place.line == 0 ? "" : std::to_string(finding.place.line) + ":";
    TReason reason =
        ReasonFor(EReason::eDocumentMistake, line + " " + NameFor(finding) + finding.text + "; " + finding.remedy);
    reason.file = finding.place.file;
    reason.className = finding.place.cls;
    reason.property = finding.place.property;
    return reason;
}

TReason FindMistake(const std::string& document, const std::string& schema) {
    TFindings findings;
    try {
        CheckDocument(document, {schema}, findings);
    } catch (const TCommandError&) {
        return {};  // it is not there, which the reason of the library says
    }
    findings.Sort();
    const std::vector<TFinding>& all = findings.All();
    auto first = std::find_if(all.begin(), all.end(), IsRefused);
    if (first == all.end()) first = std::find_if(all.begin(), all.end(), IsError);
    return first == all.end() ? TReason() : ReasonOf(*first);
}

bool HasDocumentFailed(const TPluginLibrary& library) {
    if (library.report.end.state != eComplete || library.report.FindOwner() == nullptr) return false;
    const bool hasNoClass = library.classes.empty() && library.duplicateClasses.empty();
    return hasNoClass || !library.report.loadFailure.empty();
}

}  // namespace

void FindDocumentMistakes(std::list<TPluginLibrary>& libraries, const std::string& schema) {
    for (TPluginLibrary& library : libraries)
        if (HasDocumentFailed(library)) {
            library.documentMistake = FindMistake(library.FullDocumentPath(), schema);
            library.documentMistake.file = library.DocumentPath();
        }
}
