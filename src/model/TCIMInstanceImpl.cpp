#include "model/TCIMInstanceImpl.h"

#include <algorithm>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "model/TCIMClassImpl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TCIMQualifierImpl.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TNormalizedName.h"
#include "platform/CoreLog.h"

TCIMInstanceImpl::TCIMInstanceImpl(TCIMInstance& handle, TCIMClass* cls)
    : fHandle(&handle), fClass(cls), fLayout(TCIMClassImpl::Of(*cls).GetPropertyLayout()) {
    fProperties.reserve(fLayout->Size());
    for (size_t i = 0; i < fLayout->Size(); ++i) fProperties.emplace_back(fLayout->DeclarationAt(i));
    const size_t stamp = fLayout->Find("datetimeofcollection");
    if (stamp != TPropertyLayout::kNone) PropertyAt(stamp).SetValue(TOSSpecific::GetLocalTime());
}

void TCIMInstanceImpl::Validate() const {
    if (GetContainer()->isDiffContainer()) return;
    for (const TCIMPropertyDecl* key : TCIMClassImpl::Of(*fClass).EnumerateKeyDecls()) {
        if (!GetProperty(key->GetName())->GetBody()->Value().IsNull()) continue;
        LogAndThrow(kyrStatusInvalidInstance,
                    "Instance " + fClass->GetName() + ": key property " + key->GetName() + " is NULL");
    }
}

TContainer* TCIMInstanceImpl::GetContainer() const { return fClass->GetContainer(); }

void TCIMInstanceImpl::AddToContainer() {
    fHandle->Validate();
    fClass->AddInstance(*fHandle);
}

TCIMProperty* TCIMInstanceImpl::FindProperty(std::string_view name) const {
    const size_t index = fLayout->Find(TNormalizedName(name).View());
    return index == TPropertyLayout::kNone ? nullptr : &PropertyAt(index);
}

TCIMProperty* TCIMInstanceImpl::GetProperty(std::string_view name) const {
    if (TCIMProperty* found = FindProperty(name)) return found;
    throw TKYRException(kyrStatusNotFound);
}

void TCIMInstanceImpl::SetProperty(const TCIMProperty& property) { *GetProperty(property.GetName()) = property; }

void TCIMInstanceImpl::SetPropertyValue(std::string_view name, const TCIMValue& value) {
    GetProperty(name)->SetValue(value);
}

void TCIMInstanceImpl::TakePropertyValue(std::string_view name, TCIMValue& value) {
    GetProperty(name)->GetBody()->TakeValue(value);
}

void TCIMInstanceImpl::SetPrevPropertyValue(std::string_view name, const TCIMValue& value) {
    GetProperty(name)->SetPrevValue(value);
}

void TCIMInstanceImpl::SetPrevPropertyValue(std::string_view name) { GetProperty(name)->SetPrevValue(); }

std::vector<const TCIMProperty*> TCIMInstanceImpl::EnumerateProperties() const {
    std::vector<const TCIMProperty*> properties;
    properties.reserve(fProperties.size());
    for (const TCIMProperty& property : fProperties) properties.push_back(&property);
    return properties;
}

TCIMReference TCIMInstanceImpl::BuildPath() const {
    TCIMReference path(nullptr);
    path.SetClass(*fClass);
    for (const std::string& name : fClass->EnumerateKeyNames())
        path.AddKeyValue(name, GetProperty(name)->GetBody()->Value());
    return path;
}

std::string TCIMInstanceImpl::BuildPathText() const {
    TKeyValues keys;
    if (!CollectKeyValues(keys)) return BuildPath().GetPath();
    std::string path = fClass->GetName();
    if (keys.empty()) return path;
    path += '.';
    for (const auto& [name, value] : keys) TCIMReferenceImpl::AppendBinding(path, *name, *value);
    path.pop_back();
    return path;
}

/// Collects what a reference to this instance would bind. False if a reference might refuse a key or bind it under
/// another name; the caller must then make the reference, so that the same failures are raised and logged.
bool TCIMInstanceImpl::CollectKeyValues(TKeyValues& keys) const {
    for (const TCIMPropertyDecl* key : TCIMClassImpl::Of(*fClass).EnumerateKeyDecls()) {
        const size_t index = fLayout->Find(TNormalizedName(key->GetName()).View());
        if (index == TPropertyLayout::kNone || &fLayout->DeclarationAt(index) != key) return false;
        if (fClass->FindPropertyDecl(key->GetName()) != key) return false;
        const TCIMValue& value = PropertyAt(index).GetBody()->Value();
        if (value.GetType() != key->GetType()) return false;
        keys.emplace_back(&key->GetName(), &value);
    }
    std::sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return *a.first < *b.first; });
    return true;
}

boost::shared_ptr<TCIMInstance> TCIMInstanceImpl::Adopt() {
    boost::shared_ptr<TCIMInstance> owner = fOwner.lock();
    if (owner) return owner;
    owner.reset(fHandle);
    fOwner = owner;
    return owner;
}

bool TCIMInstanceImpl::operator==(const TCIMInstanceImpl& other) const {
    return fClass == other.fClass && fLayout->HasSameNames(*other.fLayout) && fProperties == other.fProperties;
}

void CloseInstance(TCIMInstance*& instance) {
    const boost::shared_ptr<TCIMInstanceImpl> body = instance->GetBody();
    try {
        instance->AddToContainer();
    } catch (...) {
        if (body.unique()) instance = nullptr;  // the failure has destroyed the handle, which had shared the body
        throw;
    }
}
