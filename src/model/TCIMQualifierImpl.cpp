#include "model/TCIMQualifierImpl.h"

std::atomic<unsigned long> TCIMQualifierImpl::fgChangeCount = 0;

bool TCIMQualifierImpl::IsTrue(const TCIMQualifier* qualifier) {
    if (qualifier == nullptr) return false;
    const TCIMValue& value = ValueOf(*qualifier);
    return !value.IsNull() && static_cast<bool>(value);
}

void TCIMQualifierImpl::SetValue(const TCIMValue& value) {
    ++fgChangeCount;
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
