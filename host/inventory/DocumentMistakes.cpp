#include "inventory/DocumentMistakes.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "base/ExitStatus.h"
#include "check/Check.h"

namespace {

// Errors that cost no more than a class or a property, that another mistake leads to, or at which the reader does not
// always stop. They are told where it stopped at them, or where nothing else is wrong.
constexpr const char* kLessLikely[] = {"D06", "D10", "D15", "D19", "S01", "S03", "S04", "S07", "S12", "S24", "S26"};

// Broken markup, which leads to most errors behind it.
constexpr const char* kBroken[] = {"D01", "D02", "D17"};

bool IsBroken(const TFinding& finding) {
    return std::find(std::begin(kBroken), std::end(kBroken), std::string(finding.rule->id)) != std::end(kBroken);
}

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

// 0 if there is none.
size_t LineIn(const std::string& text) {
    constexpr std::string_view kWord = " line ";
    const size_t word = text.find(kWord);
    return word == std::string::npos ? 0 : std::strtoul(text.c_str() + word + kWord.size(), nullptr, 10);
}

// The line at which the core's reader stopped, as it has logged; 0 if it did not.
size_t LineOfStop(const TPluginReport& report) {
    for (const TMessage& message : report.messages)
        if (const size_t line = message.core ? LineIn(message.text) : 0; line != 0) return line;
    return 0;
}

// The error at which the reader stopped: broken markup, or an error of that line, or else the last one in front of it,
// which the reader may notice only at the end of a class. Otherwise the first one of the document. Null if there is
// none.
const TFinding* FindCause(const TFindings& findings, size_t stop) {
    const TFinding *onLine = nullptr, *before = nullptr, *first = nullptr, *any = nullptr;
    for (const TFinding& finding : findings.All()) {
        if (!IsError(finding)) continue;
        if (IsBroken(finding)) return &finding;
        const bool isLikely = IsRefused(finding);
        if (any == nullptr) any = &finding;
        if (isLikely && first == nullptr) first = &finding;
        if (isLikely && finding.place.line < stop) before = &finding;
        const bool isBetter = onLine == nullptr || (isLikely && !IsRefused(*onLine));
        if (stop != 0 && finding.place.line == stop && isBetter) onLine = &finding;
    }
    for (const TFinding* found : {onLine, before, first})
        if (found != nullptr) return found;
    return any;
}

TReason FindMistake(const std::string& document, const std::string& schema, size_t stop) {
    TFindings findings;
    try {
        CheckDocument(document, {schema}, findings);
    } catch (const TCommandError&) {
        return {};  // it is not there, which the reason of the library says
    }
    findings.Sort();
    const TFinding* const cause = FindCause(findings, stop);
    return cause == nullptr ? TReason() : ReasonOf(*cause);
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
            library.documentMistake = FindMistake(library.FullDocumentPath(), schema, LineOfStop(library.report));
            library.documentMistake.file = library.FullDocumentPath();
        }
}
