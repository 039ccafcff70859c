#include "kyr/TCIMInstance.h"

#include <boost/make_shared.hpp>
#include <functional>

#include "kyr/TKYRException.h"
#include "model/TCIMInstanceImpl.h"
#include "model/TSmallObject.h"

TCIMInstance::TCIMInstance(TCIMClass* cls)
    : fBody(boost::allocate_shared<TCIMInstanceImpl>(TSmallObjectAllocator<TCIMInstanceImpl>(), *this, cls)) {}
TCIMInstance::TCIMInstance(TCIMInstance&, TCIMClass&) { throw TKYRException(kyrStatusNotImplemented); }
TCIMInstance::~TCIMInstance() = default;

void TCIMInstance::Validate() const { fBody->Validate(); }
void TCIMInstance::AddToContainer() const { fBody->AddToContainer(); }
TContainer* TCIMInstance::GetContainer() const { return fBody->GetContainer(); }
TCIMClass* TCIMInstance::GetClass() const { return fBody->GetClass(); }
TCIMProperty* TCIMInstance::GetProperty(const std::string& name) const { return fBody->GetProperty(name); }
TCIMProperty* TCIMInstance::FindProperty(const std::string& name) const { return fBody->FindProperty(name); }
void TCIMInstance::SetProperty(const TCIMProperty& property) { fBody->SetProperty(property); }
void TCIMInstance::SetPropertyValue(const std::string& name, const TCIMValue& value) {
    fBody->SetPropertyValue(name, value);
}
void TCIMInstance::SetPrevPropertyValue(const std::string& name, const TCIMValue& value) {
    fBody->SetPrevPropertyValue(name, value);
}
void TCIMInstance::SetPrevPropertyValue(const std::string& name) { fBody->SetPrevPropertyValue(name); }
std::vector<const TCIMProperty*> TCIMInstance::EnumerateProperties() const { return fBody->EnumerateProperties(); }
TCIMReference TCIMInstance::BuildPath() const { return fBody->BuildPath(); }
std::vector<TCIMInstance*> TCIMInstance::References(const std::string& assocClass, const std::string& role) const {
    return fBody->References(assocClass, role);
}
std::vector<TCIMInstance*> TCIMInstance::Associators(const std::string& assocClass, const std::string& resultClass,
                                                     const std::string& role, const std::string& resultRole) const {
    return fBody->Associators(assocClass, resultClass, role, resultRole);
}
bool TCIMInstance::operator==(const TCIMInstance& other) const { return *fBody == *other.fBody; }
bool TCIMInstance::operator<(const TCIMInstance& other) const {
    return std::less<const TCIMClass*>()(GetClass(), other.GetClass());
}
boost::shared_ptr<TCIMInstanceImpl> TCIMInstance::GetBody() const { return fBody; }
