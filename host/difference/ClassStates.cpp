#include "difference/ClassStates.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/Values.h"

namespace {

constexpr const char* kPartial = "partial";

std::string WordForState(const TCIMInstance& state) {
    const TCIMProperty* const property = state.FindProperty("State");
    return property == nullptr ? "" : DisplayText(*property);
}

}  // namespace

bool IsSameState(const TClassState& a, const TClassState& b) {
    if (a.IsKnown() != b.IsKnown()) return false;
    if (a.outcome.state != b.outcome.state || a.outcome.code != b.outcome.code) return false;
    return a.outcome.code != EReason::eNone || a.outcome.text == b.outcome.text;
}

TClassStates::TClassStates(const TContainer& container)
    : fContainer(container), fTellsStates(!StatesOf(container, kCollectionClass).empty()) {
    for (const TCIMInstance* state : StatesOf(container, kCollectedClassClass))
        fStates.emplace(TextOf(*state, "Name"), state);
    for (const TCIMInstance* state : StatesOf(container, kCollectionClass))
        if (const TStoredOutcome outcome = OutcomeOf(*state); outcome.code == EReason::eFileChanged)
            fFileChange = outcome;
}

TClassState TClassStates::StateOf(const std::string& className) const {
    TClassState state;
    state.cls = FindClassNamed(fContainer, className);
    if (!state.IsKnown()) return state;
    const auto found = fStates.find(state.cls->GetName());
    if (found != fStates.end()) {
        state.instance = found->second;
        state.outcome = OutcomeOf(*found->second);
        state.word = WordForState(*found->second);
        state.code = WordFor(state.outcome.code, fContainer);
    } else if (fTellsStates) {
        state.outcome = {ePartial, EReason::eNone, "the collection does not say how complete the class is"};
        state.word = kPartial;
    }
    if (fFileChange.state != eComplete && state.HasAllInstances()) {
        state.outcome = fFileChange;
        state.word = kPartial;
        state.code = WordFor(state.outcome.code, fContainer);
    }
    return state;
}
