#include "kyr/TCIMQualifierDecl.h"

#include <boost/make_shared.hpp>

#include "model/TCIMQualifierDeclImpl.h"
#include "model/TContainerImpl.h"

TCIMQualifierDecl::TCIMQualifierDecl(TContainer& container)
    : fBody(boost::make_shared<TCIMQualifierDeclImpl>(*this, container)) {}
TCIMQualifierDecl::TCIMQualifierDecl(TContainer& container, const std::string& name, const TCIMValue& value,
                                     EScope scope, EFlavor flavor)
    : fBody(boost::make_shared<TCIMQualifierDeclImpl>(*this, container, name, value, scope, flavor)) {}
TCIMQualifierDecl::~TCIMQualifierDecl() = default;

void TCIMQualifierDecl::Validate() const {}
void TCIMQualifierDecl::AddToContainer() const { fBody->AddToContainer(); }
const std::string& TCIMQualifierDecl::GetName() const { return fBody->GetName(); }
void TCIMQualifierDecl::SetName(const std::string& name) { fBody->SetName(name); }
TCIMValue::TCIMType TCIMQualifierDecl::GetType() const { return fBody->Value().GetType(); }
bool TCIMQualifierDecl::IsArray() const { return fBody->Value().IsArray(); }
TCIMValue TCIMQualifierDecl::GetValue() const { return fBody->Value(); }
void TCIMQualifierDecl::SetValue(const TCIMValue& value) { fBody->SetValue(value); }
TContainer* TCIMQualifierDecl::GetContainer() const { return fBody->GetContainer(); }
TCIMQualifierDecl::EScope TCIMQualifierDecl::GetScope() const { return fBody->GetScope(); }
TCIMQualifierDecl::EFlavor TCIMQualifierDecl::GetFlavor() const { return fBody->GetFlavor(); }
void TCIMQualifierDecl::SetFlavor(EFlavor flavor) { fBody->SetFlavor(flavor); }
void TCIMQualifierDecl::UnsetFlavor(EFlavor flavor) { fBody->UnsetFlavor(flavor); }
bool TCIMQualifierDecl::operator==(const TCIMQualifierDecl& other) const {
    return TContainerImpl::CompareNames(GetName(), other.GetName()) == 0;
}
bool TCIMQualifierDecl::operator<(const TCIMQualifierDecl& other) const {
    return TContainerImpl::CompareNames(GetName(), other.GetName()) < 0;
}
boost::shared_ptr<TCIMQualifierDeclImpl> TCIMQualifierDecl::GetBody() const { return fBody; }
