#include "states/CollectionSummary.h"

#include <string>
#include <utility>
#include <vector>

#include "base/Output.h"
#include "base/Text.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kLongestReason = 500;  // bytes; it may name paths of any length
constexpr size_t kMostNames = 5;

void Report(const std::string& what, EState state, const std::string& text) {
    constexpr const char* kNames[] = {"", "complete", "partial", "failed", "timed out", "refused", "not asked"};
    PrintDiagnostic(what + ": " + kNames[state] + ": " + CutText(text, kLongestReason));
}

// " (classes A, B)", or nothing.
std::string NamesText(std::vector<std::string> names) {
    if (names.empty()) return "";
    const char* const start = names.size() == 1 ? " (class " : " (classes ";
    const size_t more = names.size() > kMostNames ? names.size() - kMostNames : 0;
    names.resize(names.size() - more);
    return start + Join(names) + (more == 0 ? "" : " and " + std::to_string(more) + " more") + ")";
}

bool IsSame(const TStoredOutcome& a, const TStoredOutcome& b) {
    return a.state == b.state && a.code == b.code && a.text == b.text;
}

bool IsOutcomeMissing(const TStoredOutcome& outcome) { return IsMissing(outcome.state, outcome.code); }

// Classes with the plugin's own outcome stand in its line, others have lines behind it. Gives whether it printed any.
bool ReportPlugin(const TContainer& container, const std::string& plugin, const TStoredOutcome& own) {
    std::vector<std::string> sharing;
    std::vector<std::pair<std::string, TStoredOutcome>> others;
    for (const TCIMInstance* instance : StatesOf(container, kCollectedClassClass)) {
        const TStoredOutcome outcome = OutcomeOf(*instance);
        if (TextOf(*instance, "Plugin") != plugin || !IsOutcomeMissing(outcome)) continue;
        const std::string name = TextOf(*instance, "Name");
        if (IsSame(outcome, own))
            sharing.push_back(name);
        else
            others.emplace_back(name, outcome);
    }
    const bool hasLine = IsOutcomeMissing(own) && !own.text.empty();
    if (hasLine) Report("plugin " + plugin, own.state, own.text + NamesText(sharing));
    for (const auto& [name, outcome] : others)
        Report("plugin " + plugin + ", class " + name, outcome.state, outcome.text);
    return hasLine || !others.empty();
}

// What is not complete about the plugins stands in their own lines. A file of kyr 1.0 has no code for the reason of the
// whole, which may be the only thing that says what is missing.
bool NeedsLineOfItsOwn(const TStoredOutcome& collection, bool arePluginsReported) {
    if (collection.code == EReason::eInterrupted) return true;
    return collection.code == EReason::eNone && collection.state == ePartial && !arePluginsReported;
}

EExit StatusOf(EState collection) {
    switch (collection) {
        case eComplete:
        case eNotAsked:
            return eExitComplete;
        case ePartial:
            return eExitPartial;
        default:
            PrintDiagnostic("nothing was collected");
            return eExitNothing;
    }
}

}  // namespace

EExit ReportIncomplete(const TContainer& container) {
    bool arePluginsReported = false;
    for (const TCIMInstance* instance : StatesOf(container, kCollectedPluginClass))
        arePluginsReported |= ReportPlugin(container, TextOf(*instance, "Name"), OutcomeOf(*instance));
    EExit status = eExitComplete;
    for (const TCIMInstance* instance : StatesOf(container, kCollectionClass)) {
        const TStoredOutcome outcome = OutcomeOf(*instance);
        if (NeedsLineOfItsOwn(outcome, arePluginsReported)) PrintDiagnostic(outcome.text);
        status = StatusOf(outcome.state);
    }
    return status;
}
