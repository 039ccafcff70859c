#include "states/MissingSources.h"

#include <iterator>
#include <set>
#include <utility>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "states/StateInstances.h"

namespace {

// By the ValueMap of the property Absence.
constexpr EReason kAbsences[] = {EReason::eSourceMissing, EReason::eSourceMissing, EReason::eNoPermission,
                                 EReason::eNotSupported, EReason::eReadError};

TReason ReasonIn(const TCIMInstance& instance) {
    const unsigned short absence = NumberOf(instance, "Absence");
    TReason reason = ReasonFor(absence < std::size(kAbsences) ? kAbsences[absence] : EReason::eSourceMissing);
    reason.className = TextOf(instance, "ClassName");
    reason.file = TextOf(instance, "Source");
    return reason;
}

}  // namespace

TMissingSources TakeMissingSources(
    const TContainer& container,
    const std::function<bool(const TCIMInstance& instance, const std::string& className)>& mayReport) {
    TMissingSources sources;
    TCIMClass* const cls = container.FindClass(kMissingSourceClass);
    if (cls == nullptr) return sources;
    std::set<std::string> seen;
    for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
        TReason reason = ReasonIn(*instance);
        if (!mayReport(*instance, reason.className)) continue;
        std::vector<TReason>& ofClass = sources[reason.className];
        if (seen.insert(instance->BuildPath().GetPath()).second) ofClass.push_back(std::move(reason));
    }
    RemoveInstances(*cls);
    return sources;
}
