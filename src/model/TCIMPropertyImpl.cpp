#include "model/TCIMPropertyImpl.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/TCIMValueTransfer.h"
#include "model/TReferenceIndex.h"
#include "model/TypeName.h"
#include "platform/CoreLog.h"

namespace {

std::string NameOf(const TCIMClass* cls) { return cls == nullptr ? std::string() : cls->GetName(); }

}  // namespace

TCIMPropertyImpl::TCIMPropertyImpl(const TCIMPropertyImpl& other) : TCIMPropertyImpl(*other.fDeclaration) {
    if (other.fValue.HasValue()) SetValue(*other.fValue);
    if (other.fPrevValue) SetPrevValue(*other.fPrevValue);
}

const TCIMValue& TCIMPropertyImpl::Value() const { return fValue.HasValue() ? *fValue : fDeclaration->GetValue(); }

const TCIMValue& TCIMPropertyImpl::PrevValue() const { return fPrevValue ? *fPrevValue : Value(); }

void TCIMPropertyImpl::SetValue(const TCIMValue& value) {
    CheckValue(value, "SetValue");
    TCIMValue copy(value);
    Store(copy);
}

void TCIMPropertyImpl::TakeValue(TCIMValue& value) {
    CheckValue(value, "SetValue");
    Store(value);
}

void TCIMPropertyImpl::Store(TCIMValue& value) {
    if (value.IsReference() || (*fValue).IsReference()) TReferenceIndex::NoteChange();
    if (value.GetType() != TCIMValue::TCIMType::eCIMNone && value.GetType() != TCIMValue::TCIMType::eCIMChar)
        return fValue.Take(value);
    fValue.Reset();
    TCIMValue copy(value);  // which raises for a NULL of type char
    fValue.Take(copy);
}

void TCIMPropertyImpl::SetPrevValue(const TCIMValue& value) {
    if (!value.IsNull()) CheckValue(value, "SetPrevValue");
    fPrevValue = std::make_unique<TCIMValue>(value);
}

void TCIMPropertyImpl::SetPrevValue() { fPrevValue = std::make_unique<TCIMValue>(); }

void TCIMPropertyImpl::CheckValue(const TCIMValue& value, const char* operation) const {
    const TCIMValue& declared = fDeclaration->GetValue();
    if (declared.GetType() != value.GetType())
        LogAndThrow(kyrStatusTypeMismatch, std::string(operation) + ": decl is type " +
                                               TypeNameForLog(declared.GetType()) + " but value is type " +
                                               TypeNameForLog(value.GetType()));
    if (!declared.IsReference()) return;
    const TCIMClass* expected = declared.GetReferencedClass();
    const TCIMClass* actual = value.GetReferencedClass();
    if (expected != nullptr && actual != nullptr && actual->IsSubclassOf(expected)) return;
    LogAndThrow(kyrStatusTypeMismatch, std::string(operation) + ": decl references type " + NameOf(expected) +
                                           " but value references " + NameOf(actual));
}

// Defaults are not compared: two properties without a value of their own are equal, and one without is less than one
// with a value.
bool TCIMPropertyImpl::operator==(const TCIMPropertyImpl& other) const {
    if (!(*fDeclaration == *other.fDeclaration)) return false;
    if (GetPropagated() || other.GetPropagated()) return GetPropagated() == other.GetPropagated();
    return *fValue == *other.fValue;
}

bool TCIMPropertyImpl::operator<(const TCIMPropertyImpl& other) const {
    if (*fDeclaration < *other.fDeclaration) return true;
    if (!(*fDeclaration == *other.fDeclaration)) return false;
    if (GetPropagated() || other.GetPropagated()) return GetPropagated() && !other.GetPropagated();
    return *fValue < *other.fValue;
}
