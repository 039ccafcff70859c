#include "model/TCIMQualifierDeclImpl.h"

#include "kyr/TContainer.h"

TCIMQualifierDeclImpl::TCIMQualifierDeclImpl(TCIMQualifierDecl& handle, TContainer& container)
    : fHandle(&handle),
      fContainer(&container),
      fScope(TCIMQualifierDecl::EScope(0)),
      fFlavor(TCIMQualifierDecl::EFlavor(0)) {}

TCIMQualifierDeclImpl::TCIMQualifierDeclImpl(TCIMQualifierDecl& handle, TContainer& container, const std::string& name,
                                             const TCIMValue& value, TCIMQualifierDecl::EScope scope,
                                             TCIMQualifierDecl::EFlavor flavor)
    : fHandle(&handle), fContainer(&container), fName(name), fValue(value), fScope(scope), fFlavor(flavor) {}

TCIMQualifierDeclImpl::TCIMQualifierDeclImpl(const TCIMQualifierDeclImpl& other, TContainer& container)
    : fHandle(other.fHandle),
      fContainer(&container),
      fName(other.fName),
      fValue(other.fValue),
      fScope(other.fScope),
      fFlavor(other.fFlavor) {}

void TCIMQualifierDeclImpl::AddToContainer() const {
    fHandle->Validate();
    // Destroys the handle, and with it this body, if it fails.
    fContainer->AddQualifierDecl(*fHandle);
}
