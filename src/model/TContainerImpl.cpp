#include "model/TContainerImpl.h"

#include <cassert>

#include "kyr/TCIMClass.h"
#include "kyr/TKYRException.h"
#include "model/TCIMClassImpl.h"
#include "model/TCIMQualifierDeclImpl.h"
#include "model/TNormalizedName.h"
#include "platform/CoreLog.h"

TContainerImpl::~TContainerImpl() {
    // The destructor of a class removes it from the list of its superclass, which may be destroyed before it here.
    for (const auto& entry : fClasses) TCIMClassImpl::Of(*entry.second).ForgetSuperClassList();
    fClasses.clear();
    delete fRootClass;
    // fQualifierDecls is destroyed after the classes, because qualifiers point to its elements.
}

std::string TContainerImpl::NormalizeName(const std::string& name) { return std::string(TNormalizedName(name).View()); }

int TContainerImpl::CompareNames(const std::string& a, const std::string& b) {
    const TNormalizedName first(a);
    const TNormalizedName second(b);
    return first.View().compare(second.View());
}

void TContainerImpl::Initialize() { fRootClass = fHandle->AllocateClass("<root>", nullptr); }

void TContainerImpl::AddClass(TCIMClass& cls) {
    const std::string key = NormalizeName(cls.GetName());
    if (fClasses.count(key) != 0) {
        LogCore(kyrLogDebug, "TContainer: class " + cls.GetName() + " already defined");
        throw TKYRException(kyrStatusAlreadyExists);
    }
    const auto ret = fClasses.emplace(key, boost::shared_ptr<TCIMClass>(&cls));
    assert(ret.second);
    static_cast<void>(ret);
}

TCIMClass* TContainerImpl::FindClass(const std::string& name) const {
    if (name.empty()) return fRootClass;
    const auto found = LookupClass(name);
    return found.second ? found.first->second.get() : nullptr;
}

TCIMClass* TContainerImpl::GetClass(const std::string& name) const {
    if (TCIMClass* found = FindClass(name)) return found;
    throw TKYRException(kyrStatusNotFound);
}

void TContainerImpl::RemoveClass(TCIMClass& cls) {
    const auto found = LookupClass(cls.GetName());
    if (!found.second) throw TKYRException(kyrStatusNotFound);
    fClasses.erase(found.first);
}

void TContainerImpl::AddQualifierDecl(TCIMQualifierDecl& declaration) {
    TCIMQualifierDeclImpl& body = TCIMQualifierDeclImpl::Of(declaration);
    boost::shared_ptr<TCIMQualifierDecl> owner;
    bool taken = body.IsAdopted();  // a second shared_ptr to the same object would destroy it twice
    if (!taken) {
        owner.reset(&declaration);
        taken = !fQualifierDecls.emplace(NormalizeName(declaration.GetName()), owner).second;
    }
    if (taken) {
        LogCore(kyrLogDebug, "TContainer: qualifier " + declaration.GetName() + " already defined");
        throw TKYRException(kyrStatusAlreadyExists);
    }
    body.SetAdopted();
}

TCIMQualifierDecl* TContainerImpl::FindQualifierDecl(const std::string& name) const {
    const auto found = LookupQualifier(name);
    return found.second ? found.first->second.get() : nullptr;
}

TCIMQualifierDecl* TContainerImpl::GetQualifierDecl(const std::string& name) const {
    if (TCIMQualifierDecl* found = FindQualifierDecl(name)) return found;
    throw TKYRException(kyrStatusNotFound);
}

void TContainerImpl::RemoveQualifierDecl(TCIMQualifierDecl& declaration) {
    const auto found = LookupQualifier(declaration.GetName());
    if (!found.second) throw TKYRException(kyrStatusNotFound);
    fQualifierDecls.erase(found.first);
}

std::vector<TCIMQualifierDecl*> TContainerImpl::EnumerateQualifiers() const {
    std::vector<TCIMQualifierDecl*> declarations;
    declarations.reserve(fQualifierDecls.size());
    for (const auto& entry : fQualifierDecls) declarations.push_back(entry.second.get());
    return declarations;
}

void TContainerImpl::SetDiffInstances(std::vector<TCIMInstance*> instances) {
    RequireDiffContainer();
    fDiffInstances = std::move(instances);
}

std::vector<TCIMInstance*> TContainerImpl::GetDiffInstances() const {
    RequireDiffContainer();
    return fDiffInstances;
}

bool TContainerImpl::HasDifferences() const {
    RequireDiffContainer();
    return !fDiffInstances.empty();
}

std::pair<TContainerImpl::TQualifierDecls::const_iterator, bool> TContainerImpl::LookupQualifier(
    const std::string& name) const {
    const auto found = fQualifierDecls.find(TNormalizedName(name).View());
    return {found, found != fQualifierDecls.end()};
}

std::pair<TContainerImpl::TClasses::const_iterator, bool> TContainerImpl::LookupClass(const std::string& name) const {
    const auto found = fClasses.find(TNormalizedName(name).View());
    return {found, found != fClasses.end()};
}

void TContainerImpl::RequireDiffContainer() const {
    if (fIsDiff) return;
    LogAndThrow(
        kyrStatusNotSupported,
        "TContainer: Cannot access DiffInstances if the containter is not a Diff Container");  // misspelt; see
                                                                                               // docs/oddities.md
}
