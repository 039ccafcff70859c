#include "states/Conclusion.h"

#include <string>
#include <utility>
#include <vector>

#include "states/Judgement.h"
#include "states/SavedStates.h"
#include "states/State.h"
#include "text/Output.h"

namespace {

constexpr size_t kLongestReason = 500;  // it may name paths that anybody chose

std::string Shorten(const std::string& text) {
    size_t end = kLongestReason;
    if (text.size() <= end) return text;
    while (end > 0 && (text[end] & 0xc0) == 0x80) --end;  // not within a character
    return text.substr(0, end) + "...";
}

void Tell(const std::string& what, const TVerdict& verdict) {
    constexpr const char* kNames[] = {"", "complete", "partial", "failed", "timed out", "refused", "not asked"};
    Complain(what + ": " + kNames[verdict.state] + ": " + Shorten(verdict.reason));
}

constexpr size_t kMostNames = 5;

// " (classes A, B)", or nothing.
std::string NamesText(const std::vector<std::string>& names) {
    std::string text;
    for (size_t i = 0; i < names.size() && i < kMostNames; ++i) text += (i == 0 ? "" : ", ") + names[i];
    if (names.empty()) return text;
    if (names.size() > kMostNames) text += " and " + std::to_string(names.size() - kMostNames) + " more";
    return (names.size() == 1 ? " (class " : " (classes ") + text + ")";
}

bool IsSame(const TVerdict& a, const TVerdict& b) { return a.state == b.state && a.reason == b.reason; }

// Classes that share the plugin's fate stand in its own line, others have lines behind it.
void TellPlugin(const TContainer& container, const std::string& plugin, const TVerdict& fate) {
    std::vector<std::string> sharing;
    std::vector<std::pair<std::string, TVerdict>> others;
    for (const TCIMInstance* instance : StatesOf(container, kCollectedClassClass)) {
        const TVerdict verdict = VerdictOf(*instance);
        if (TextOf(*instance, "Plugin") != plugin || !IsMissing(verdict)) continue;
        const std::string name = TextOf(*instance, "Name");
        if (IsSame(verdict, fate))
            sharing.push_back(name);
        else
            others.emplace_back(name, verdict);
    }
    if (IsMissing(fate) && !fate.reason.empty())
        Tell("plugin " + plugin, {fate.state, fate.reason + NamesText(sharing)});
    for (const auto& [name, verdict] : others) Tell("plugin " + plugin + ", class " + name, verdict);
}

void TellPlugins(const TContainer& container) {
    for (const TCIMInstance* instance : StatesOf(container, kCollectedPluginClass))
        TellPlugin(container, TextOf(*instance, "Name"), VerdictOf(*instance));
}

bool IsInterruption(const std::string& reason) { return reason.compare(0, 11, "interrupted") == 0; }

EExit StatusOf(const TVerdict& collection) {
    switch (collection.state) {
        case eComplete:
        case eNotAsked:
            return eExitComplete;
        case ePartial:
            return eExitPartial;
        default:
            Complain("nothing was collected");
            return eExitNothing;
    }
}

}  // namespace

EExit TellWhatIsMissing(const TContainer& container) {
    TellPlugins(container);
    EExit status = eExitComplete;
    for (const TCIMInstance* instance : StatesOf(container, kCollectionClass)) {
        const TVerdict verdict = VerdictOf(*instance);
        if (IsInterruption(verdict.reason)) Complain(verdict.reason);
        status = StatusOf(verdict);
    }
    return status;
}
