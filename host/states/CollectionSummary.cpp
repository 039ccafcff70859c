#include "states/CollectionSummary.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/Output.h"
#include "base/Text.h"
#include "kyr/TContainer.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kLongestReason = 500;  // in bytes; reasons may hold paths and log lines of any length
constexpr size_t kMostNames = 5;

void Report(const std::string& what, EState state, const std::string& text) {
    constexpr const char* kNames[] = {"",          "complete", "partial",   "failed",
                                      "timed out", "refused",  "not asked", "no source"};
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

// One line for each source that is missing, which names the classes that are found by it.
bool ReportMissingSources(const TContainer& container) {
    std::map<std::string, std::vector<std::string>> classes;
    for (const TCIMInstance* instance : StatesOf(container, kCollectedClassClass))
        for (const std::string& source : TextsOf(*instance, "MissingSources"))
            classes[source].push_back(TextOf(*instance, "Name"));
    for (auto& [source, names] : classes)
        PrintDiagnostic("missing source " + CutText(source, kLongestReason) + NamesText(std::move(names)));
    return !classes.empty();
}

// Whether the class lacks nothing but sources, each of which has a line.
bool LacksSourcesOnly(const TCIMInstance& cls, const TStoredOutcome& outcome) {
    switch (outcome.code) {
        case EReason::eSourceMissing:
        case EReason::eNoPermission:
        case EReason::eNotSupported:
        case EReason::eReadError:
            return !TextsOf(cls, "MissingSources").empty();
        default:
            return false;
    }
}

// " and 3 more of its library", or nothing.
std::string MoreText(size_t more) { return more == 0 ? "" : " and " + std::to_string(more) + " more of its library"; }

// One line for the plugin, which names the classes that share its outcome and counts the other plugins that do, then
// one for each class with another outcome. Returns whether it printed any.
bool ReportPlugin(const TContainer& container, const std::string& plugin, const TStoredOutcome& own, size_t more) {
    std::vector<std::string> sharing;
    std::vector<std::pair<std::string, TStoredOutcome>> others;
    for (const TCIMInstance* instance : StatesOf(container, kCollectedClassClass)) {
        if (TextOf(*instance, "Plugin") != plugin) continue;
        const TStoredOutcome outcome = OutcomeOf(*instance);
        if (!IsOutcomeMissing(outcome) || LacksSourcesOnly(*instance, outcome)) continue;
        const std::string name = TextOf(*instance, "Name");
        if (IsSame(outcome, own))
            sharing.push_back(name);
        else
            others.emplace_back(name, outcome);
    }
    // Of a call that failed for a class, the line of the class tells why.
    const bool isToldOfClass = own.code == EReason::eDataCallFailed && sharing.empty() && !others.empty();
    const bool hasLine = IsOutcomeMissing(own) && own.HasReason() && !isToldOfClass;
    if (hasLine) Report("plugin " + plugin + MoreText(more), own.state, own.text + NamesText(sharing));
    for (const auto& [name, outcome] : others)
        Report("plugin " + plugin + ", class " + name, outcome.state, outcome.text);
    return hasLine || !others.empty();
}

bool IsSameFailure(const TCIMInstance& a, const TCIMInstance& b) {
    const TStoredOutcome outcome = OutcomeOf(a);
    return IsOutcomeMissing(outcome) && IsSame(outcome, OutcomeOf(b)) && TextOf(a, "Library") == TextOf(b, "Library");
}

// Plugins of one library that fail alike, of which there may be a hundred, are told of once.
bool ReportPlugins(const TContainer& container) {
    const std::vector<TCIMInstance*> plugins = StatesOf(container, kCollectedPluginClass);
    bool any = false;
    for (auto plugin = plugins.begin(); plugin != plugins.end();) {
        const auto isOther = [&](const TCIMInstance* other) { return !IsSameFailure(**plugin, *other); };
        const auto next = std::find_if(plugin + 1, plugins.end(), isOther);
        const auto more = static_cast<size_t>(next - plugin - 1);
        any |= ReportPlugin(container, TextOf(**plugin, "Name"), OutcomeOf(**plugin), more);
        plugin = next;
    }
    return any;
}

// Usually the lines of the plugins explain why a collection is not complete. An interruption and damage to the file are
// not among them, and files of kyr 1.0 may say only in the reason of the collection, which has no code there, what is
// missing.
bool NeedsOwnLine(const TStoredOutcome& collection, bool arePluginsReported) {
    if (collection.code == EReason::eInterrupted || collection.code == EReason::eFileChanged) return true;
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
    const bool areSourcesReported = ReportMissingSources(container);
    const bool arePluginsReported = ReportPlugins(container) || areSourcesReported;
    for (const TCIMInstance* instance : StatesOf(container, kCollectionClass)) {
        const TStoredOutcome outcome = OutcomeOf(*instance);
        if (NeedsOwnLine(outcome, arePluginsReported))
            PrintDiagnostic(outcome.HasReason() ? outcome.text : "the collection is partial, and does not say why");
    }
    return StatusOfCollection(container);
}

void ReportLeftOut(const TContainer& container, const std::vector<std::string>& classNames) {
    for (const TCIMInstance* instance : StatesOf(container, kCollectedClassClass)) {
        const std::string name = TextOf(*instance, "Name");
        const TStoredOutcome outcome = OutcomeOf(*instance);
        const bool isNamed = std::find(classNames.begin(), classNames.end(), name) != classNames.end();
        const bool isOptional = outcome.code == EReason::eNotGranted || outcome.code == EReason::eNotNamed;
        if (isNamed && isOptional && outcome.state == eNotAsked) Report("class " + name, outcome.state, outcome.text);
    }
}

EExit StatusOfCollection(const TContainer& container) {
    const std::vector<TCIMInstance*> collections = StatesOf(container, kCollectionClass);
    return collections.empty() ? eExitComplete : StatusOf(OutcomeOf(*collections.back()).state);
}
