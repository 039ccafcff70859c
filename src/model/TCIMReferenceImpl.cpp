#include "model/TCIMReferenceImpl.h"

#include <boost/make_shared.hpp>
#include <functional>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/TCIMPropertyDeclImpl.h"
#include "model/TCIMQualifierImpl.h"
#include "model/TCIMStringValueImpl.h"
#include "model/TReferenceIndex.h"
#include "platform/CoreLog.h"

namespace {

/// Like TCIMPropertyDeclImpl::IsKey, but false instead of raising when the qualifier KEY is not boolean.
bool IsPlainKey(const TCIMPropertyDecl& declaration) {
    const TCIMQualifier* key = TCIMPropertyDeclImpl::Of(declaration).Qualifiers().GetKey();
    if (key == nullptr || TCIMQualifierImpl::ValueOf(*key).GetType() != TCIMValue::TCIMType::eCIMBoolean) return false;
    return TCIMQualifierImpl::IsTrue(key);
}

}  // namespace

TCIMReferenceImpl::TCIMReferenceImpl(TCIMReference& handle, const TCIMReferenceImpl& other)
    : fHandle(&handle),
      fContainer(other.fContainer),
      fClass(other.fClass),
      fBindings(other.fBindings),
      fIsShared(true),
      fElement(other.fElement) {
    if (!other.fIsShared.load(std::memory_order_relaxed)) other.fIsShared.store(true, std::memory_order_relaxed);
}

void TCIMReferenceImpl::Clear() {
    fContainer = nullptr;
    fClass = nullptr;
    fElement = nullptr;
    fBindings.reset();
}

void TCIMReferenceImpl::SetPath(const std::string&) const {
    if (fContainer == nullptr) LogAndThrow(kyrStatusInvalidOpSequence, "SetPath() called before container set");
    throw TKYRException(kyrStatusNotImplemented);
}

TCIMClass* TCIMReferenceImpl::GetClass() const {
    if (fClass != nullptr) return fClass;
    LogAndThrow(kyrStatusInvalidReference,
                "GetClass() called before container set");  // the class is missing; see docs/oddities.md
}

void TCIMReferenceImpl::SetClassName(const std::string& name) {
    if (fContainer == nullptr) LogAndThrow(kyrStatusInvalidOpSequence, "SetClassName() called before container set");
    if (!Bindings().empty())
        LogAndThrow(kyrStatusInvalidOpSequence, "SetClassName() called with keybindings filled in");
    fClass = fContainer->GetClass(name);
}

void TCIMReferenceImpl::SetClass(TCIMClass& cls) {
    if (!Bindings().empty()) LogAndThrow(kyrStatusInvalidOpSequence, "SetClass() called with keybindings filled in");
    fClass = &cls;
}

void TCIMReferenceImpl::AddKeyValue(const std::string& name, const TCIMValue& value) {
    if (fClass == nullptr) LogAndThrow(kyrStatusInvalidOpSequence, "AddKeyValue() called before class set");
    const TCIMPropertyDecl& declaration = *fClass->GetPropertyDecl(name);
    if (declaration.GetType() != value.GetType())
        LogAndThrow(kyrStatusTypeMismatch, "Declaration type: " + declaration.GetType().ToString() +
                                               " Value type: " + value.GetType().ToString());
    if (!IsPlainKey(declaration))
        LogAndThrow(kyrStatusInvalidOpSequence, "AddKeyValue() called with a non-key property " + name);
    OwnBindings().emplace(name, value);
}

TCIMReferenceImpl::TBindings& TCIMReferenceImpl::OwnBindings() {
    if (!fBindings || fIsShared) SetKeyBindings(Bindings());
    return *fBindings;
}

const TCIMReferenceImpl::TBindings& TCIMReferenceImpl::Bindings() const {
    static const TBindings kNone;
    return fBindings ? *fBindings : kNone;
}

void TCIMReferenceImpl::SetKeyBindings(TBindings bindings) {
    fBindings = boost::make_shared<TBindings>(std::move(bindings));
    fIsShared = false;
}

void TCIMReferenceImpl::AppendBinding(std::string& path, const std::string& name, const TCIMValue& value) {
    if (value.IsNull()) return;
    if (value.GetType() == TCIMValue::TCIMType::eCIMString)
        return AppendBinding(path, name, TCIMStringValueImpl::TextOf(value));
    try {
        AppendBinding(path, name, value.ToString(10));
    } catch (const TKYRException&) {
    }
}

void TCIMReferenceImpl::AppendBinding(std::string& path, const std::string& name, const std::string& text) {
    path.append(name).append("=\"").append(text).append("\",");
}

std::string TCIMReferenceImpl::GetPath() const {
    std::string path = GetClass()->GetName();
    if (Bindings().empty()) return path;
    path += '.';
    for (const auto& [name, value] : Bindings()) AppendBinding(path, name, value);
    path.pop_back();  // the last comma, or the dot if no binding has a text
    return path;
}

ICIMElement* TCIMReferenceImpl::FindCIMElement() const {
    if (Bindings().empty()) return fClass;
    if (fElement != nullptr) return fElement;
    fElement = GetClass()->FindInstance(*fHandle);
    if (fElement != nullptr) TReferenceIndex::NoteLookUp();
    return fElement;
}

ICIMElement* TCIMReferenceImpl::GetCIMElement() const {
    if (Bindings().empty()) return fClass;
    if (ICIMElement* found = FindCIMElement()) return found;
    throw TKYRException(kyrStatusNotFound);
}

bool TCIMReferenceImpl::operator==(const TCIMReferenceImpl& other) const {
    return fClass == other.fClass && Bindings() == other.Bindings();
}

bool TCIMReferenceImpl::operator<(const TCIMReferenceImpl& other) const {
    if (fClass != other.fClass) return std::less<const TCIMClass*>()(fClass, other.fClass);
    return Bindings() < other.Bindings();
}
