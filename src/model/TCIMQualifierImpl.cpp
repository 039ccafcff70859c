#include "model/TCIMQualifierImpl.h"

bool TCIMQualifierImpl::IsTrue(const TCIMQualifier* qualifier) {
    if (qualifier == nullptr) return false;
    const TCIMValue& value = ValueOf(*qualifier);
    return !value.IsNull() && static_cast<bool>(value);
}

void TCIMQualifierImpl::SetValue(const TCIMValue& value) {
    fValue = value;
    fPropagated = false;
}

void TCIMQualifierImpl::SetFlavor(TCIMQualifierDecl::EFlavor flavor) {
    fFlavor = fFlavor | flavor;
    fPropagated = false;
}

void TCIMQualifierImpl::UnsetFlavor(TCIMQualifierDecl::EFlavor flavor) {
    fFlavor = fFlavor & ~flavor;
    fPropagated = false;
}
