#include "lookup/Ties.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "Exit.h"
#include "command/NearMatches.h"
#include "command/Options.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "lookup/ClassNames.h"
#include "lookup/SameName.h"

namespace {

const ICIMElement* FindTarget(const TCIMReference& reference) {
    try {
        return reference.GetCIMElement();
    } catch (const TKYRException&) {
        return nullptr;
    }
}

bool NamesInstance(const TCIMReference& reference) { return !reference.EnumerateKeyBindings().empty(); }

// Appends a tie for each end but the instance's own, which is the first in that role.
void AppendTies(const TCIMInstance& instance, const TCIMInstance& association, const std::string& role,
                std::vector<TTie>& ties) {
    const std::vector<TEnd> ends = EndsOf(association);
    const auto own = std::find_if(ends.begin(), ends.end(), [&](const TEnd& end) {
        return end.instance == &instance && (role.empty() || IsSameName(end.role, role));
    });
    if (own == ends.end()) return;
    for (auto end = ends.begin(); end != ends.end(); ++end)
        if (end != own) ties.push_back({&association, own->role, *end});
}

TCIMClass* FindFilter(const TContainer& container, const std::string& name) {
    return name.empty() ? nullptr : &GetClassNamed(container, name);
}

std::vector<std::string> RolesIn(const std::vector<TCIMClass*>& associations) {
    std::set<std::string, TNameLess> roles;
    for (const TCIMClass* cls : associations)
        for (const TCIMPropertyDecl* property : cls->EnumeratePropertyDecls())
            if (property->GetValue().GetType() == TCIMValue::TCIMType::eCIMReference) roles.insert(property->GetName());
    return {roles.begin(), roles.end()};
}

void RefuseUnknownRole(const std::string& role, const std::vector<std::string>& roles) {
    const auto isIt = [&role](const std::string& each) { return IsSameName(each, role); };
    if (role.empty() || std::any_of(roles.begin(), roles.end(), isIt)) return;
    std::string list;
    for (const std::string& each : roles) list += (list.empty() ? "" : ", ") + each;
    throw TCommandError(eExitUsage, "unknown role '" + role + "'" + DidYouMean(role, roles) + " (roles: " + list + ")");
}

bool Passes(const TEnd& end, const TCIMClass* cls, const std::string& role) {
    if (!role.empty() && !IsSameName(end.role, role)) return false;
    return cls == nullptr || end.reference.GetClass()->IsSubclassOf(cls);
}

auto KindOf(const TTie& tie) { return std::tie(tie.association->GetClass()->GetName(), tie.role, tie.other.role); }

}  // namespace

std::vector<TEnd> EndsOf(const TCIMInstance& association) {
    std::vector<TEnd> ends;
    for (const TCIMProperty* property : association.EnumerateProperties()) {
        if (property->GetType() != TCIMValue::TCIMType::eCIMReference) continue;
        const TCIMValue value = property->GetValue();
        if (value.IsNull()) continue;
        const TCIMReference reference = value;
        if (!NamesInstance(reference)) continue;
        ends.push_back({property->GetName(), reference, dynamic_cast<const TCIMInstance*>(FindTarget(reference))});
    }
    return ends;
}

std::vector<TTie> FindTies(const TCIMInstance& instance, const TOptions& options) {
    const TContainer& container = *instance.GetContainer();
    TCIMClass* const filter = FindFilter(container, options.assocClass);
    const std::vector<TCIMClass*> associations =
        AssociationsOf(filter == nullptr ? *container.GetRootClass() : *filter);
    if (filter != nullptr && associations.empty())
        throw TCommandError(eExitUsage, "class " + filter->GetName() + " is no association");
    TCIMClass* const results = FindFilter(container, options.resultClass);
    for (const std::string& role : {options.role, options.resultRole}) RefuseUnknownRole(role, RolesIn(associations));
    std::vector<TTie> ties;
    for (const TCIMClass* cls : associations)
        for (const TCIMInstance* association : cls->EnumerateInstances(false))
            AppendTies(instance, *association, options.role, ties);
    const auto isHeldBack = [&](const TTie& tie) { return !Passes(tie.other, results, options.resultRole); };
    ties.erase(std::remove_if(ties.begin(), ties.end(), isHeldBack), ties.end());
    std::stable_sort(ties.begin(), ties.end(), [](const TTie& a, const TTie& b) { return KindOf(a) < KindOf(b); });
    return ties;
}

TTieIndex::TTieIndex(const TContainer& container) {
    for (const TCIMClass* cls : AssociationsOf(*container.GetRootClass()))
        for (const TCIMInstance* association : cls->EnumerateInstances(false))
            for (const TEnd& end : EndsOf(*association)) Enter(end.instance, association);
}

std::vector<TTie> TTieIndex::TiesOf(const TCIMInstance& instance) const {
    std::vector<TTie> ties;
    const auto found = fAssociations.find(&instance);
    if (found == fAssociations.end()) return ties;
    for (const TCIMInstance* association : found->second) AppendTies(instance, *association, "", ties);
    return ties;
}

// One association may point to an instance twice.
void TTieIndex::Enter(const TCIMInstance* instance, const TCIMInstance* association) {
    if (instance == nullptr) return;
    std::vector<const TCIMInstance*>& associations = fAssociations[instance];
    if (associations.empty() || associations.back() != association) associations.push_back(association);
}
