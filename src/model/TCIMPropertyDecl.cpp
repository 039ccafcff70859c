#include "kyr/TCIMPropertyDecl.h"

#include <boost/make_shared.hpp>

#include "kyr/TKYRException.h"
#include "model/TCIMPropertyDeclImpl.h"
#include "model/TContainerImpl.h"

TCIMPropertyDecl::TCIMPropertyDecl(const std::string& name, TCIMClass& cls, const TCIMValue& value)
    : fBody(boost::make_shared<TCIMPropertyDeclImpl>(*this, name, cls, value)) {}
TCIMPropertyDecl::TCIMPropertyDecl(TCIMPropertyDecl&, TCIMClass&) { throw TKYRException(kyrStatusNotImplemented); }
TCIMPropertyDecl::~TCIMPropertyDecl() = default;

void TCIMPropertyDecl::Validate() const {}
void TCIMPropertyDecl::AddToContainer() const { fBody->AddToContainer(); }
const std::string& TCIMPropertyDecl::GetName() const { return fBody->GetName(); }
void TCIMPropertyDecl::SetName(const std::string& name) { fBody->SetName(name); }
const TCIMValue& TCIMPropertyDecl::GetValue() const { return fBody->GetValue(); }
void TCIMPropertyDecl::SetValue(const TCIMValue& value) { fBody->SetValue(value); }
TCIMValue::TCIMType TCIMPropertyDecl::GetType() const { return fBody->GetValue().GetType(); }
bool TCIMPropertyDecl::IsArray() const { return fBody->GetValue().IsArray(); }
TCIMClass* TCIMPropertyDecl::GetClass() const { return fBody->GetClass(); }
void TCIMPropertyDecl::AddQualifier(TCIMQualifier& qualifier) { fBody->AddQualifier(qualifier); }
TCIMQualifier* TCIMPropertyDecl::GetQualifier(const std::string& name) const { return fBody->Qualifiers().Get(name); }
std::vector<const TCIMQualifier*> TCIMPropertyDecl::EnumerateQualifiers() const {
    return fBody->Qualifiers().Enumerate();
}
void TCIMPropertyDecl::RemoveQualifier(TCIMQualifier& qualifier) { fBody->RemoveQualifier(qualifier); }
TCIMQualifier* TCIMPropertyDecl::FindQualifier(const std::string& name) const { return fBody->Qualifiers().Find(name); }
bool TCIMPropertyDecl::operator==(const TCIMPropertyDecl& other) const {
    return TContainerImpl::CompareNames(GetName(), other.GetName()) == 0;
}
bool TCIMPropertyDecl::operator<(const TCIMPropertyDecl& other) const {
    return TContainerImpl::CompareNames(GetName(), other.GetName()) < 0;
}
boost::shared_ptr<TCIMPropertyDeclImpl> TCIMPropertyDecl::GetBody() const { return fBody; }
