#include "kyr/TContainer.h"

#include <boost/make_shared.hpp>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "model/TContainerImpl.h"

TContainer::TContainer() : fBody(boost::make_shared<TContainerImpl>(*this)) { fBody->Initialize(); }
TContainer::~TContainer() = default;

TCIMClass* TContainer::AllocateClass(const std::string& name, TCIMClass* superclass) const {
    return new TCIMClass(fBody->GetHandle(), name, superclass);
}
TCIMInstance* TContainer::AllocateInstance(TCIMClass* cls) const { return new TCIMInstance(cls); }
TCIMQualifierDecl* TContainer::AllocateQualifierDecl(const std::string& name, const TCIMValue& value,
                                                     TCIMQualifierDecl::EScope scope,
                                                     TCIMQualifierDecl::EFlavor flavor) const {
    return new TCIMQualifierDecl(fBody->GetHandle(), name, value, scope, flavor);
}

void TContainer::AddClass(TCIMClass& cls) { fBody->AddClass(cls); }
TCIMClass* TContainer::GetClass(const std::string& name) const { return fBody->GetClass(name); }
TCIMClass* TContainer::FindClass(const std::string& name) const { return fBody->FindClass(name); }
TCIMClass* TContainer::GetRootClass() const { return fBody->GetRootClass(); }
void TContainer::RemoveClass(TCIMClass& cls) { fBody->RemoveClass(cls); }
void TContainer::AddQualifierDecl(TCIMQualifierDecl& declaration) { fBody->AddQualifierDecl(declaration); }
TCIMQualifierDecl* TContainer::GetQualifierDecl(const std::string& name) const { return fBody->GetQualifierDecl(name); }
TCIMQualifierDecl* TContainer::FindQualifierDecl(const std::string& name) const {
    return fBody->FindQualifierDecl(name);
}
void TContainer::RemoveQualifierDecl(TCIMQualifierDecl& declaration) { fBody->RemoveQualifierDecl(declaration); }
std::vector<TCIMQualifierDecl*> TContainer::EnumerateQualifiers() const { return fBody->EnumerateQualifiers(); }
void TContainer::hackhack_TurnIntoADiffContainer() { fBody->TurnIntoADiffContainer(); }
bool TContainer::isDiffContainer() const { return fBody->IsDiffContainer(); }
void TContainer::setDiffInstances(std::vector<TCIMInstance*> instances) {
    fBody->SetDiffInstances(std::move(instances));
}
std::vector<TCIMInstance*> TContainer::getDiffInstances() const { return fBody->GetDiffInstances(); }
bool TContainer::hasDifferences() const { return fBody->HasDifferences(); }
boost::shared_ptr<TContainerImpl> TContainer::GetBody() const { return fBody; }
