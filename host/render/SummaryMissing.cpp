#include "render/SummaryMissing.h"

#include <algorithm>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/Provenance.h"
#include "model/SpokenNames.h"
#include "render/SummaryPieces.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kLongestText = 400;   // in bytes
constexpr size_t kLongestSource = 60;  // in bytes
constexpr size_t kMostCauses = 4;
constexpr size_t kMostNames = 8;
constexpr size_t kMostSources = 3;

void AddNew(std::vector<std::string>& texts, const std::string& text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
}

/// One reason for which something is missing, with the classes and sources that share it.
struct TCause {
    std::string text;
    bool isPermission = false;
    std::vector<std::string> classes = {};
    std::vector<std::string> associations = {};
    std::vector<std::string> sources = {};
};

class TCauses {
public:
    TCauses(const TContainer& container, const std::vector<std::string>& classes)
        : fContainer(container), fWanted(classes) {}

    std::vector<std::string> Find() {
        const std::vector<TCIMInstance*> states = StatesOf(fContainer, kCollectedClassClass);
        for (const std::string& name : fWanted) {
            const auto isOfClass = [&name](const TCIMInstance* state) {
                return IsSameName(TextOf(*state, "Name"), name);
            };
            const auto state = std::find_if(states.begin(), states.end(), isOfClass);
            state == states.end() ? AddUnknownClass(name) : AddClass(**state);
        }
        for (const TCIMInstance* state : StatesOf(fContainer, kCollectedPluginClass)) AddPlugin(*state);
        for (const TCIMInstance* state : StatesOf(fContainer, kCollectionClass)) AddCollection(*state);
        return Texts();
    }

private:
    TCause& CauseWith(const std::string& text) {
        const auto found =
            std::find_if(fCauses.begin(), fCauses.end(), [&text](const TCause& cause) { return cause.text == text; });
        return found != fCauses.end() ? *found : fCauses.emplace_back(TCause{text});
    }

    void AddClassTo(TCause& cause, const std::string& name) const {
        const TCIMClass* const cls = FindClassNamed(fContainer, name);
        AddNew(cls != nullptr && cls->IsAssociation() ? cause.associations : cause.classes, SpokenNameOf(name));
    }

    void AddSource(EReason code, const std::string& className, const std::string& source) {
        TCause& cause = CauseWith(SentenceOf(ReasonFor(code)));
        cause.isPermission |= code == EReason::eNoPermission;
        AddClassTo(cause, className);
        AddNew(cause.sources, CutText(VisibleText(source), kLongestSource));
    }

    // The sources that a class lacks, each "source: reason". Returns whether there were any.
    bool AddSources(const TCIMInstance& state) {
        const std::vector<std::string> entries = TextsOf(state, "MissingSources");
        for (const std::string& entry : entries) {
            const size_t colon = entry.rfind(": ");
            const EReason code = colon == std::string::npos ? EReason::eNone : CodeOfAbsence(entry.substr(colon + 2));
            AddSource(code == EReason::eNone ? EReason::eNotPresent : code, TextOf(state, "Name"),
                      entry.substr(0, colon));
        }
        return !entries.empty();
    }

    bool AddValues(const std::string& className) {
        bool any = false;
        for (const TCIMInstance* instance : StatesOf(fContainer, className.c_str()))
            for (const TReason& absence : AbsencesOf(*instance))
                if (absence.code == EReason::eNoPermission || absence.code == EReason::eReadError) {
                    AddSource(absence.code, className, absence.file);
                    any = true;
                }
        return any;
    }

    void AddClass(const TCIMInstance& state) {
        const TStoredOutcome outcome = OutcomeOf(state);
        const std::string name = TextOf(state, "Name");
        if (outcome.state == eNotAsked && !IsMissing(outcome.state, outcome.code))
            return AddClassTo(CauseWith("not collected"), name);
        if (!IsMissing(outcome.state, outcome.code)) return;
        const bool areSourcesTold = AddSources(state);
        const bool areValuesTold = outcome.code == EReason::eValuesUnreadable && AddValues(name);
        if (!areSourcesTold && !areValuesTold)
            AddClassTo(CauseWith(outcome.text.empty() ? "no reason is given" : outcome.text), name);
    }

    // No state tells of it: the file or the plugins that there are do not know it.
    void AddUnknownClass(const std::string& name) {
        if (InstancesOf(fContainer, name.c_str()).empty()) AddClassTo(CauseWith("not collected"), name);
    }

    void AddPlugin(const TCIMInstance& state) {
        const TStoredOutcome outcome = OutcomeOf(state);
        if (!IsMissing(outcome.state, outcome.code) || !outcome.HasReason()) return;
        TCause& cause = CauseWith(outcome.text);
        if (cause.classes.empty()) AddNew(cause.classes, "plugin " + TextOf(state, "Name"));
    }

    void AddCollection(const TCIMInstance& state) {
        const TStoredOutcome outcome = OutcomeOf(state);
        const bool isOwn = outcome.code == EReason::eInterrupted || outcome.code == EReason::eFileChanged;
        const bool isUntold = outcome.code == EReason::eNone && outcome.state == ePartial && fCauses.empty();
        if (isOwn || isUntold)
            CauseWith(outcome.HasReason() ? outcome.text : "the collection is partial, and does not say why");
    }

    bool IsOfSuperuser() const {
        for (const TCIMInstance* state : StatesOf(fContainer, kCollectionClass))
            if (HasBoolean(*state, "Superuser", true)) return true;
        return false;
    }

    std::string TextFor(const TCause& cause) const {
        const std::string names = FoldedTexts(cause.classes.empty() ? cause.associations : cause.classes, kMostNames);
        std::string text = names.empty() ? cause.text : names + ": " + cause.text;
        if (!cause.sources.empty()) text += " (" + FoldedTexts(cause.sources, kMostSources) + ")";
        return CutText(VisibleText(text), kLongestText) +
               (cause.isPermission && !IsOfSuperuser() ? "; run as root" : "");
    }

    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const TCause& cause : fCauses) {
            if (texts.size() == kMostCauses) {
                texts.push_back(std::to_string(fCauses.size() - kMostCauses) + " more; see show CollectionState");
                break;
            }
            texts.push_back(TextFor(cause));
        }
        return texts;
    }

    const TContainer& fContainer;
    const std::vector<std::string>& fWanted;
    std::vector<TCause> fCauses;
};

}  // namespace

std::vector<std::string> MissingTexts(const TContainer& container, const std::vector<std::string>& classes) {
    return TCauses(container, classes).Find();
}
