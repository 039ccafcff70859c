#include "model/Associations.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "base/ExitStatus.h"
#include "base/NearMatches.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"

namespace {

// Null if the reference cannot be resolved.
const ICIMElement* FindTarget(const TCIMReference& reference) {
    try {
        return reference.GetCIMElement();
    } catch (const TKYRException&) {
        return nullptr;
    }
}

bool NamesInstance(const TCIMReference& reference) { return !reference.EnumerateKeyBindings().empty(); }

// Appends a link to each end of the association but the instance's own, which is the first one that refers to the
// instance in that role. An empty role stands for any.
void AppendLinks(const TCIMInstance& instance, const TCIMInstance& association, const std::string& role,
                 std::vector<TAssociationLink>& links) {
    const std::vector<TAssociationEnd> ends = EndsOf(association);
    const auto own = std::find_if(ends.begin(), ends.end(), [&](const TAssociationEnd& end) {
        return end.instance == &instance && (role.empty() || IsSameName(end.role, role));
    });
    if (own == ends.end()) return;
    for (auto end = ends.begin(); end != ends.end(); ++end)
        if (end != own) links.push_back({&association, own->role, *end});
}

TCIMClass* FindFilterClass(const TContainer& container, const std::string& name) {
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
    const auto isRole = [&role](const std::string& each) { return IsSameName(each, role); };
    if (role.empty() || std::any_of(roles.begin(), roles.end(), isRole)) return;
    throw TCommandError(eExitUsage,
                        "unknown role '" + role + "'" + DidYouMean(role, roles) + " (roles: " + Join(roles) + ")");
}

bool Passes(const TAssociationEnd& end, const TCIMClass* cls, const std::string& role) {
    if (!role.empty() && !IsSameName(end.role, role)) return false;
    return cls == nullptr || end.reference.GetClass()->IsSubclassOf(cls);
}

// Links that are equal in this are listed together.
auto SortKeyOf(const TAssociationLink& link) {
    return std::tie(link.association->GetClass()->GetName(), link.role, link.other.role);
}

using TRoles = std::vector<const char*>;

// This association makes the processor depend on its cache. People look for the cache below the processor.
bool IsReversed(const TCIMInstance& association) {
    const TCIMClass* const cls = association.GetContainer()->FindClass("CIM_AssociatedCacheMemory");
    return cls != nullptr && association.GetClass()->IsSubclassOf(cls);
}

}  // namespace

std::vector<TAssociationEnd> EndsOf(const TCIMInstance& association) {
    std::vector<TAssociationEnd> ends;
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

std::vector<TAssociationLink> FindLinks(const TCIMInstance& instance, const TAssociationFilter& filter) {
    const TContainer& container = *instance.GetContainer();
    TCIMClass* const only = FindFilterClass(container, filter.assocClass);
    const std::vector<TCIMClass*> associations = AssociationsOf(only == nullptr ? *container.GetRootClass() : *only);
    if (only != nullptr && associations.empty())
        throw TCommandError(eExitUsage, "class " + only->GetName() + " is no association");
    TCIMClass* const results = FindFilterClass(container, filter.resultClass);
    for (const std::string& role : {filter.role, filter.resultRole}) RefuseUnknownRole(role, RolesIn(associations));
    std::vector<TAssociationLink> links;
    for (const TCIMClass* cls : associations)
        for (const TCIMInstance* association : cls->EnumerateInstances(false))
            AppendLinks(instance, *association, filter.role, links);
    const auto isFilteredOut = [&](const TAssociationLink& link) {
        return !Passes(link.other, results, filter.resultRole);
    };
    links.erase(std::remove_if(links.begin(), links.end(), isFilteredOut), links.end());
    std::stable_sort(links.begin(), links.end(),
                     [](const TAssociationLink& a, const TAssociationLink& b) { return SortKeyOf(a) < SortKeyOf(b); });
    return links;
}

size_t OwnerAmong(const TCIMInstance& association, const std::vector<TAssociationEnd>& ends) {
    const TRoles roles = IsReversed(association) ? TRoles{"Dependent"} : TRoles{"GroupComponent", "Antecedent"};
    for (size_t i = 0; i < ends.size(); ++i)
        for (const char* role : roles)
            if (IsSameName(ends[i].role, role)) return i;
    return 0;
}

TAssociationIndex::TAssociationIndex(const TContainer& container) {
    for (const TCIMClass* cls : AssociationsOf(*container.GetRootClass()))
        for (const TCIMInstance* association : cls->EnumerateInstances(false))
            for (const TAssociationEnd& end : EndsOf(*association)) Add(end.instance, association);
}

std::vector<TAssociationLink> TAssociationIndex::LinksOf(const TCIMInstance& instance) const {
    std::vector<TAssociationLink> links;
    const auto found = fAssociations.find(&instance);
    if (found == fAssociations.end()) return links;
    for (const TCIMInstance* association : found->second) AppendLinks(instance, *association, "", links);
    return links;
}

// An association that refers to an instance twice is entered once: LinksOf finds both links in it.
void TAssociationIndex::Add(const TCIMInstance* instance, const TCIMInstance* association) {
    if (instance == nullptr) return;
    std::vector<const TCIMInstance*>& associations = fAssociations[instance];
    if (associations.empty() || associations.back() != association) associations.push_back(association);
}
