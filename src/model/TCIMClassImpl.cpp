#include "model/TCIMClassImpl.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cassert>

#include "kyr/TCIMInstance.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/TCIMInstanceImpl.h"
#include "model/TCIMPropertyDeclImpl.h"
#include "model/TCIMQualifierImpl.h"
#include "model/TNormalizedName.h"
#include "platform/CoreLog.h"

namespace {

/// Removes each class whose superclass is in the list too. An association is registered with the superclass only,
/// because FindAssociations looks in all superclasses.
void KeepMostGeneral(std::vector<TCIMClass*>& classes) {
    for (size_t a = 0; a < classes.size(); ++a) {
        for (size_t b = 0; b < classes.size();) {
            if (a == b || !classes[b]->IsSubclassOf(classes[a])) {
                ++b;
                continue;
            }
            classes.erase(classes.begin() + static_cast<std::ptrdiff_t>(b));
            if (b < a) --a;
        }
    }
}

constexpr unsigned long kOutdated = ~0ul;  // no count of changes

bool IsASCII(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

TCIMClassImpl::TCIMClassImpl(TCIMClass& handle, TContainer& container, std::string name, TCIMClass* superClass)
    : fHandle(&handle), fContainer(&container), fName(std::move(name)), fSuperClass(superClass) {
    if (fSuperClass == nullptr) {
        fSuperClass = container.GetRootClass();  // null while the root class itself is being made
        return;
    }
    const TCIMClassImpl& inherited = Of(*fSuperClass);
    fPropertyDecls = inherited.fPropertyDecls;
    fQualifiers.InheritFrom(inherited.fQualifiers);
}

TCIMClassImpl::~TCIMClassImpl() {
    if (fAdded) Of(*fSuperClass).RemoveChildClass(*fHandle);
}

void TCIMClassImpl::Validate() const {
    if (IsAbstract()) return;
    for (const auto& entry : fPropertyDecls)
        if (TCIMPropertyDeclImpl::Of(*entry.second).IsKey()) return;
    LogAndThrow(kyrStatusInvalidClass, "Class " + fName + " has no keys");
}

void TCIMClassImpl::AddToContainer() {
    fHandle->Validate();
    fContainer->AddClass(*fHandle);
    Of(*fSuperClass).AddChildClass(*fHandle);
    fAdded = true;
    if (IsAssociation()) RegisterWithReferencedClasses();
}

void TCIMClassImpl::RegisterWithReferencedClasses() {
    std::vector<TCIMClass*> referenced;
    for (const auto& entry : fPropertyDecls) {
        const TCIMValue& value = entry.second->GetValue();
        if (value.IsReference() && value.GetReferencedClass() != nullptr)
            referenced.push_back(value.GetReferencedClass());
    }
    KeepMostGeneral(referenced);
    for (TCIMClass* cls : referenced) Of(*cls).AddAssociationClass(*fHandle);
}

bool TCIMClassImpl::IsRootClass() const { return fSuperClass != nullptr && fSuperClass == fContainer->GetRootClass(); }

// Pre-order, without recursion: a document can declare a chain of subclasses long enough to overflow the stack.
std::vector<TCIMClass*> TCIMClassImpl::EnumerateSubClasses(bool deep) const {
    if (!deep) return fChildClasses;
    std::vector<TCIMClass*> subClasses;
    std::vector<TCIMClass*> pending(fChildClasses.rbegin(), fChildClasses.rend());
    while (!pending.empty()) {
        TCIMClass* next = pending.back();
        pending.pop_back();
        subClasses.push_back(next);
        const std::vector<TCIMClass*>& children = Of(*next).fChildClasses;
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return subClasses;
}

bool TCIMClassImpl::IsAssociation() const {
    return TCIMQualifierImpl::IsTrue(fQualifiers.Find(TLiteralName{"ASSOCIATION", "association"}));
}

bool TCIMClassImpl::IsAbstract() const {
    return TCIMQualifierImpl::IsTrue(fQualifiers.Find(TLiteralName{"ABSTRACT", "abstract"}));
}

bool TCIMClassImpl::IsSubclassOf(const TCIMClass* other) const {
    const TCIMClass* root = fContainer->GetRootClass();
    const TCIMClass* current = fHandle;
    while (current != root && Of(*current).fSuperClass != nullptr) {
        if (current == other || *current == *other) return true;
        current = Of(*current).fSuperClass;
    }
    return current == other || *current == *other;
}

void TCIMClassImpl::AddChildClass(TCIMClass& child) { fChildClasses.push_back(&child); }

void TCIMClassImpl::RemoveChildClass(TCIMClass& child) {
    const auto found = std::find(fChildClasses.begin(), fChildClasses.end(), &child);
    if (found != fChildClasses.end()) fChildClasses.erase(found);
}

void TCIMClassImpl::AddAssociationClass(TCIMClass& association) { fAssociations.insert(&association); }

void TCIMClassImpl::AddPropertyDecl(TCIMPropertyDecl& declaration) {
    if (declaration.GetValue().IsReference() && !IsAssociation())
        RefuseDecl(kyrStatusNotAssociation, "add reference property ", declaration, " to non-association class ", "");
    const TNormalizedName name(declaration.GetName());
    const auto existing = fPropertyDecls.find(name.View());
    if (TCIMPropertyDeclImpl::Of(declaration).Qualifiers().Find(TLiteralName{"OVERRIDE", "override"}) != nullptr)
        RemoveOverriddenDecl(existing, declaration);
    else if (existing != fPropertyDecls.end())
        RefuseDecl(kyrStatusAlreadyExists, "add property ", declaration, " to class ", ": already exists");
    fPropertyDecls.emplace(name.View(), boost::shared_ptr<TCIMPropertyDecl>(&declaration));
    fLayout.reset();
}

void TCIMClassImpl::RemoveOverriddenDecl(TPropertyDecls::iterator existing, const TCIMPropertyDecl& declaration) {
    static const char kOverride[] = "override property ";
    static const char kInClass[] = " in class ";
    if (existing == fPropertyDecls.end())
        RefuseDecl(kyrStatusNotFound, kOverride, declaration, kInClass, ": property doesn't exist in base class");
    const TCIMPropertyDecl& inherited = *existing->second;
    if (inherited.GetType() != declaration.GetType())
        RefuseDecl(kyrStatusTypeMismatch, kOverride, declaration, kInClass, ": different types");
    if (*inherited.GetClass() == *fHandle)
        RefuseDecl(kyrStatusAlreadyExists, kOverride, declaration, kInClass, ": original was defined in this class");
    if (&inherited == &declaration)  // a second shared_ptr to the same object would destroy it twice
        RefuseDecl(kyrStatusAlreadyExists, "add property ", declaration, " to class ", ": already exists");
    fLayout.reset();  // the end of a declaration of the host's may make instances
    fPropertyDecls.erase(existing);
}

void TCIMClassImpl::RefuseDecl(kyrStatusCode code, const std::string& attempt, const TCIMPropertyDecl& declaration,
                               const std::string& relation, const std::string& reason) const {
    LogAndThrow(code, "Attempt to " + attempt + declaration.GetName() + relation + fName + reason);
}

TCIMPropertyDecl* TCIMClassImpl::FindPropertyDecl(const std::string& name) const {
    const auto found = fPropertyDecls.find(TNormalizedName(name).View());
    return found == fPropertyDecls.end() ? nullptr : found->second.get();
}

TCIMPropertyDecl* TCIMClassImpl::GetPropertyDecl(const std::string& name) const {
    if (TCIMPropertyDecl* found = FindPropertyDecl(name)) return found;
    throw TKYRException(kyrStatusNotFound);
}

std::vector<const TCIMPropertyDecl*> TCIMClassImpl::EnumeratePropertyDecls() const {
    std::vector<const TCIMPropertyDecl*> declarations;
    declarations.reserve(fPropertyDecls.size());
    for (const auto& entry : fPropertyDecls) declarations.push_back(entry.second.get());
    return declarations;
}

void TCIMClassImpl::RemovePropertyDecl(TCIMPropertyDecl& declaration) {
    const auto found = fPropertyDecls.find(TNormalizedName(declaration.GetName()).View());
    if (found == fPropertyDecls.end()) throw TKYRException(kyrStatusNotFound);
    fLayout.reset();  // the end of a declaration of the host's may make instances
    fPropertyDecls.erase(found);
    fLayout.reset();
}

std::vector<const TCIMPropertyDecl*> TCIMClassImpl::EnumerateKeyDecls() const {
    std::vector<const TCIMPropertyDecl*> keys;
    for (const auto& entry : fPropertyDecls)
        if (TCIMPropertyDeclImpl::Of(*entry.second).IsKey()) keys.push_back(entry.second.get());
    return keys;
}

std::vector<std::string> TCIMClassImpl::EnumerateKeyNames() const {
    std::vector<std::string> names;
    for (const TCIMPropertyDecl* key : EnumerateKeyDecls()) names.push_back(key->GetName());
    return names;
}

boost::shared_ptr<const TPropertyLayout> TCIMClassImpl::GetPropertyLayout() {
    if (fLayout && IsPresentLayout(*fLayout)) return fLayout;
    const auto layout = boost::make_shared<TPropertyLayout>(EnumeratePropertyDecls());
    if (!fLayout || *layout != *fLayout) {
        fLayout = layout;
        fKeyChangeCount = kOutdated;
    }
    fLayoutRenameCount = TCIMPropertyDeclImpl::GetRenameCount();
    fHasSettledNames = HasSettledNames();
    return fLayout;
}

/// True if fLayout has each declaration under the name under which it is stored, in any usual locale.
bool TCIMClassImpl::HasSettledNames() const {
    if (!TNormalizedName::IsUsualLocale() || fLayout->Size() != fPropertyDecls.size()) return false;
    size_t index = 0;
    for (const auto& [name, declaration] : fPropertyDecls) {
        const bool isSame = fLayout->NameAt(index) == name && &fLayout->DeclarationAt(index) == declaration.get();
        if (!isSame || !IsASCII(declaration->GetName())) return false;
        ++index;
    }
    return true;
}

bool TCIMClassImpl::IsPresentLayout(const TPropertyLayout& layout) const {
    return &layout == fLayout.get() && fHasSettledNames &&
           fLayoutRenameCount == TCIMPropertyDeclImpl::GetRenameCount() && TNormalizedName::IsUsualLocale();
}

const std::vector<size_t>& TCIMClassImpl::GetKeyCandidates() {
    if (fKeyChangeCount != TCIMPropertyDeclImpl::GetKeyChangeCount()) CollectKeyCandidates();
    return fKeyCandidates;
}

void TCIMClassImpl::CollectKeyCandidates() {
    std::vector<size_t> candidates;
    for (size_t index = 0; index < fLayout->Size(); ++index)
        if (TCIMPropertyDeclImpl::Of(fLayout->DeclarationAt(index)).HasKeyQualifier()) candidates.push_back(index);
    fKeyCandidates = std::move(candidates);
    fKeyChangeCount = TCIMPropertyDeclImpl::GetKeyChangeCount();
}

void TCIMClassImpl::AddInstance(TCIMInstance& instance) {
    // Owned before the path is built, so that an instance whose path cannot be built is destroyed.
    const boost::shared_ptr<TCIMInstance> owner = TCIMInstanceImpl::Of(instance).Adopt();
    fInstances.emplace(TCIMInstanceImpl::Of(instance).BuildPathText(), owner);
    fReferenceIndex.reset();
}

void TCIMClassImpl::RemoveInstance(TCIMInstance& instance) {
    auto [next, end] = fInstances.equal_range(TCIMInstanceImpl::Of(instance).BuildPathText());
    while (next != end) {
        fReferenceIndex.reset();  // the end of an instance of the host's may ask who refers to others
        next = fInstances.erase(next);
    }
    fReferenceIndex.reset();
}

TCIMInstance* TCIMClassImpl::FindInstance(const TCIMReference& reference) const {
    const std::string path = reference.GetPath();
    const auto found = fInstances.lower_bound(path);  // of several with this path, the one added first
    return found == fInstances.end() || found->first != path ? nullptr : found->second.get();
}

TCIMInstance* TCIMClassImpl::GetInstance(const TCIMReference& reference) const {
    if (TCIMInstance* found = FindInstance(reference)) return found;
    throw TKYRException(kyrStatusNotFound);
}

std::vector<TCIMInstance*> TCIMClassImpl::EnumerateInstances(bool deep) const {
    std::vector<TCIMInstance*> instances;
    instances.reserve(fInstances.size());
    for (const auto& entry : fInstances) instances.push_back(entry.second.get());
    if (!deep) return instances;
    for (const TCIMClass* subClass : EnumerateSubClasses(true))
        for (const auto& entry : Of(*subClass).fInstances) instances.push_back(entry.second.get());
    return instances;
}

bool TCIMClassImpl::FindReferring(const TCIMInstance& target, std::vector<TCIMInstance*>& instances) {
    if (!fReferenceIndex) fReferenceIndex = std::make_unique<TReferenceIndex>();
    const bool areKnown = fReferenceIndex->Prepare(fInstances);
    if (areKnown)
        fReferenceIndex->Find(target, instances);
    else
        instances = EnumerateInstances(false);
    return areKnown;
}
