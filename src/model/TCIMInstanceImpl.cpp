#include "model/TCIMInstanceImpl.h"

#include <algorithm>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "model/TCIMClassImpl.h"
#include "model/TCIMPropertyDeclImpl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TCIMReferenceImpl.h"
#include "model/TCIMReferenceValueImpl.h"
#include "model/TNormalizedName.h"
#include "platform/CoreLog.h"

/// The keys of an instance as indices of its layout.
class TCIMInstanceImpl::TKeys {
public:
    /// False if there is no room.
    bool Add(size_t index) {
        if (fCount == kMost) return false;
        fIndices[fCount++] = index;
        return true;
    }
    size_t* begin() { return fIndices; }
    size_t* end() { return fIndices + fCount; }

private:
    static constexpr size_t kMost = 8;

    size_t fIndices[kMost];
    size_t fCount = 0;
};

TCIMInstanceImpl::TCIMInstanceImpl(TCIMInstance& handle, TCIMClass* cls)
    : fHandle(&handle), fClass(cls), fLayout(TCIMClassImpl::Of(*cls).GetPropertyLayout()) {
    fProperties.reserve(fLayout->Size());
    for (size_t i = 0; i < fLayout->Size(); ++i) fProperties.emplace_back(fLayout->DeclarationAt(i));
    const size_t stamp = fLayout->Find("datetimeofcollection");
    if (stamp != TPropertyLayout::kNone) PropertyAt(stamp).SetValue(TOSSpecific::GetLocalTime());
}

void TCIMInstanceImpl::Validate() const {
    if (GetContainer()->isDiffContainer()) return;
    TKeys keys;
    if (CollectKeys(keys)) {
        for (const size_t index : keys) RequireKey(fLayout->DeclarationAt(index), ValueAt(index));
        return;
    }
    for (const TCIMPropertyDecl* key : TCIMClassImpl::Of(*fClass).EnumerateKeyDecls())
        RequireKey(*key, GetProperty(key->GetName())->GetValue());
}

void TCIMInstanceImpl::RequireKey(const TCIMPropertyDecl& key, const TCIMValue& value) const {
    if (!value.IsNull()) return;
    LogAndThrow(kyrStatusInvalidInstance,
                "Instance " + fClass->GetName() + ": key property " + key.GetName() + " is NULL");
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
    TKeys keys;
    if (!CollectBoundKeys(keys)) return BuildPath().GetPath();
    TCIMClassImpl& cls = TCIMClassImpl::Of(*fClass);
    std::string path;
    path.reserve(cls.GetLongestPath());
    path = fClass->GetName();
    if (keys.begin() == keys.end()) return path;
    path += '.';
    for (const size_t index : keys) TCIMReferenceImpl::AppendBinding(path, NameAt(index), ValueAt(index));
    cls.NotePath(path.size());
    path.pop_back();
    return path;
}

/// Collects the keys without looking them up by name. False if declarations or their names have changed since the
/// instance was made, or if there are too many keys: the caller must then look them up.
bool TCIMInstanceImpl::CollectKeys(TKeys& keys) const {
    TCIMClassImpl& cls = TCIMClassImpl::Of(*fClass);
    if (!cls.IsPresentLayout(*fLayout)) return false;
    for (const size_t index : cls.GetKeyCandidates()) {
        if (!TCIMPropertyDeclImpl::Of(fLayout->DeclarationAt(index)).IsKey()) continue;
        if (!keys.Add(index) || !IsLikeCopied(ValueAt(index))) return false;
    }
    return true;
}

/// Does what copying the value would do besides: it looks the target of a reference up. False if copying would fail.
bool TCIMInstanceImpl::IsLikeCopied(const TCIMValue& value) {
    if (value.IsReference() && !value.IsNull()) TCIMReferenceValueImpl::LookUpTarget(value);
    return value.GetType() != TCIMValue::TCIMType::eCIMChar;
}

/// The same in the order in which a reference to this instance binds them. False also if a reference might refuse a
/// key; the caller must then make the reference, so that the same failures are raised and logged.
bool TCIMInstanceImpl::CollectBoundKeys(TKeys& keys) const {
    if (!CollectKeys(keys)) return false;
    for (const size_t index : keys)
        if (ValueAt(index).GetType() != fLayout->DeclarationAt(index).GetType()) return false;
    std::sort(keys.begin(), keys.end(), [this](size_t a, size_t b) { return NameAt(a) < NameAt(b); });
    return true;
}

const TCIMValue& TCIMInstanceImpl::ValueAt(size_t index) const { return PropertyAt(index).GetBody()->Value(); }

const std::string& TCIMInstanceImpl::NameAt(size_t index) const { return fLayout->DeclarationAt(index).GetName(); }

boost::shared_ptr<TCIMInstance> TCIMInstanceImpl::Adopt() {
    boost::shared_ptr<TCIMInstance> owner = fOwner.lock();
    if (owner) return owner;
    owner.reset(fHandle);
    fOwner = owner;
    return owner;
}

bool TCIMInstanceImpl::operator==(const TCIMInstanceImpl& other) const {
    if (fClass != other.fClass || fLayout->Size() != other.fLayout->Size()) return false;
    // Pair by pair, since comparing values may fail.
    for (size_t i = 0; i < fLayout->Size(); ++i)
        if (fLayout->NameAt(i) != other.fLayout->NameAt(i) || !(fProperties[i] == other.fProperties[i])) return false;
    return true;
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
