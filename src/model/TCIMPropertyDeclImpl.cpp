#include "model/TCIMPropertyDeclImpl.h"

#include "kyr/TCIMClass.h"

std::atomic<unsigned long> TCIMPropertyDeclImpl::fgRenameCount = 0;

void TCIMPropertyDeclImpl::AddToContainer() const {
    fHandle->Validate();
    fClass->AddPropertyDecl(*fHandle);
}

void TCIMPropertyDeclImpl::SetName(const std::string& name) {
    fName = name;
    ++fgRenameCount;
}
