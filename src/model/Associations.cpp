// Reference and associator traversal, for classes in the schema and for instances in the data.

#include "kyr/TCIMInstance.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/TCIMClassImpl.h"
#include "model/TCIMInstanceImpl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TCIMReferenceValueImpl.h"
#include "model/TContainerImpl.h"

namespace {

bool RefersToClass(const TCIMValue& value, const TCIMClass& cls) {
    if (!value.IsReference()) return false;
    const TCIMClass* referenced = value.GetReferencedClass();
    return referenced != nullptr && referenced->IsSubclassOf(&cls);
}

/// The element that a reference value refers to; null if it does not exist. Raises kyrStatusValueIsNULL for a NULL
/// value.
ICIMElement* FindTarget(const TCIMValue& value) {
    if (value.IsNull()) throw TKYRException(kyrStatusValueIsNULL);
    return TCIMReferenceImpl::Of(TCIMReferenceValueImpl::ReferenceOf(value)).FindCIMElement();
}

/// Ignores a class: a reference without keys refers to one.
void AddInstance(ICIMElement* element, std::vector<TCIMInstance*>& instances) {
    if (auto* instance = dynamic_cast<TCIMInstance*>(element)) instances.push_back(instance);
}

const TCIMValue& ValueOf(const TCIMProperty& property) { return property.GetBody()->Value(); }

}  // namespace

std::vector<TCIMClass*> TCIMClassImpl::References(const std::string& assocClass, const std::string& role) const {
    const TCIMClass* association = fContainer->FindClass(assocClass);
    if (association == nullptr) return {};
    return FindAssociations(*association, role);
}

/// Looks in the superclasses too, because an association is registered only with the most general class it references.
std::vector<TCIMClass*> TCIMClassImpl::FindAssociations(const TCIMClass& assocClass, const std::string& role) const {
    std::vector<TCIMClass*> found;
    const TCIMClass* root = fContainer->GetRootClass();
    for (const TCIMClass* cls = fHandle; cls != root && cls->GetSuperClass() != nullptr; cls = cls->GetSuperClass()) {
        for (TCIMClass* association : Of(*cls).fAssociations)
            if (association->IsSubclassOf(&assocClass) && RefersToThis(*association, role))
                found.push_back(association);
    }
    return found;
}

/// True if the role refers to exactly this class; a reference to its superclass is not enough.
bool TCIMClassImpl::RefersToThis(const TCIMClass& association, const std::string& role) const {
    if (role.empty()) return true;
    const TCIMPropertyDecl* end = association.FindPropertyDecl(role);
    return end != nullptr && end->GetValue().IsReference() && end->GetValue().GetReferencedClass() == fHandle;
}

std::vector<TCIMClass*> TCIMClassImpl::Associators(const std::string& assocClass, const std::string& resultClass,
                                                   const std::string& role, const std::string& resultRole) const {
    const TCIMClass* association = fContainer->FindClass(assocClass);
    const TCIMClass* wanted = fContainer->FindClass(resultClass);
    if (association == nullptr || wanted == nullptr) return {};
    const std::string ownEnd = TContainerImpl::NormalizeName(role);

    std::vector<TCIMClass*> result;
    for (const TCIMClass* found : FindAssociations(*association, role)) {
        if (resultRole.empty()) {
            AddOtherEnds(*found, *wanted, ownEnd, result);
            continue;
        }
        const TCIMPropertyDecl* end = found->FindPropertyDecl(resultRole);
        if (end != nullptr && RefersToClass(end->GetValue(), *wanted))
            result.push_back(end->GetValue().GetReferencedClass());
    }
    return result;
}

/// Adds the classes of all ends but the first one that is this class's own.
void TCIMClassImpl::AddOtherEnds(const TCIMClass& association, const TCIMClass& resultClass, const std::string& role,
                                 std::vector<TCIMClass*>& result) const {
    bool ownEndFound = false;
    for (const auto& [name, declaration] : Of(association).fPropertyDecls) {
        const TCIMValue& value = declaration->GetValue();
        const TCIMClass* referenced = value.IsReference() ? value.GetReferencedClass() : nullptr;
        const bool isOwnEnd = role.empty() ? referenced != nullptr && *referenced == *fHandle : name == role;
        if (!ownEndFound && isOwnEnd) {
            ownEndFound = true;
            continue;
        }
        if (RefersToClass(value, resultClass)) result.push_back(value.GetReferencedClass());
    }
}

std::vector<TCIMInstance*> TCIMInstanceImpl::References(const std::string& assocClass, const std::string& role) const {
    std::vector<TCIMInstance*> found;
    for (const TCIMClass* association : fClass->References(assocClass, role)) {
        std::vector<TCIMInstance*> instances;
        const bool areFound = TCIMClassImpl::Of(*association).FindReferring(*fHandle, instances) && role.empty();
        for (TCIMInstance* instance : instances)
            if (areFound || IsReferredToBy(*instance, role)) found.push_back(instance);
    }
    return found;
}

bool TCIMInstanceImpl::CollectTargets(std::vector<const ICIMElement*>& targets) const {
    for (const TCIMProperty& property : fProperties) {
        const TCIMValue& value = ValueOf(property);
        if (!value.IsReference()) continue;
        if (value.IsNull()) return false;
        targets.push_back(TCIMReferenceImpl::Of(TCIMReferenceValueImpl::ReferenceOf(value)).GetKnownElement());
        if (targets.back() == nullptr) return false;
    }
    return true;
}

bool TCIMInstanceImpl::IsReferredToBy(const TCIMInstance& association, const std::string& role) const {
    const TCIMInstanceImpl& body = Of(association);
    if (!role.empty()) {
        const TCIMProperty* end = body.FindProperty(role);
        return end != nullptr && IsReferredToBy(*end);
    }
    for (const TCIMProperty& property : body.fProperties)
        if (IsReferredToBy(property)) return true;
    return false;
}

bool TCIMInstanceImpl::IsReferredToBy(const TCIMProperty& property) const {
    const TCIMValue& value = ValueOf(property);
    return value.IsReference() && FindTarget(value) == fHandle;
}

std::vector<TCIMInstance*> TCIMInstanceImpl::Associators(const std::string& assocClass, const std::string& resultClass,
                                                         const std::string& role, const std::string& resultRole) const {
    const TCIMClass* wanted = GetContainer()->FindClass(resultClass);
    if (wanted == nullptr) return {};
    const std::string ownEnd = TContainerImpl::NormalizeName(role);

    std::vector<TCIMInstance*> result;
    for (const TCIMInstance* association : References(assocClass, role)) {
        if (resultRole.empty()) {
            AddOtherEnds(*association, *wanted, ownEnd, result);
            continue;
        }
        const TCIMProperty* end = association->FindProperty(resultRole);
        if (end == nullptr || !RefersToClass(ValueOf(*end), *wanted)) continue;
        ICIMElement* target = FindTarget(ValueOf(*end));
        if (target == nullptr) throw TKYRException(kyrStatusNotFound);  // a result role demands that its target exists
        AddInstance(target, result);
    }
    return result;
}

/// The own end is found by class, not by instance. In an association of a class with itself the first reference is
/// taken for the own end, whichever instance it refers to; see docs/oddities.md.
void TCIMInstanceImpl::AddOtherEnds(const TCIMInstance& association, const TCIMClass& resultClass,
                                    const std::string& role, std::vector<TCIMInstance*>& result) const {
    const TCIMInstanceImpl& body = Of(association);
    const size_t ownIndex = role.empty() ? TPropertyLayout::kNone : body.fLayout->Find(role);
    bool ownEndFound = false;
    for (size_t i = 0; i < body.fProperties.size(); ++i) {
        const TCIMValue& value = ValueOf(body.PropertyAt(i));
        const bool isOwnEnd =
            role.empty() ? value.IsReference() && value.GetReferencedClass() == fClass : i == ownIndex;
        if (!ownEndFound && isOwnEnd) {
            ownEndFound = true;
            continue;
        }
        if (RefersToClass(value, resultClass)) AddInstance(FindTarget(value), result);
    }
}
