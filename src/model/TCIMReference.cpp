#include "kyr/TCIMReference.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "kyr/TCIMClass.h"
#include "model/TCIMReferenceImpl.h"

TCIMReference::TCIMReference(const TContainer* container)
    : fBody(boost::make_shared<TCIMReferenceImpl>(*this, container)) {}
TCIMReference::TCIMReference(const TContainer* container, const std::string& path) : TCIMReference(container) {
    SetPath(path);
}
TCIMReference::TCIMReference(const TCIMReference& other)
    : fBody(boost::make_shared<TCIMReferenceImpl>(*this, *other.fBody)) {}
TCIMReference& TCIMReference::operator=(const TCIMReference& other) {
    fBody = boost::make_shared<TCIMReferenceImpl>(*this, *other.fBody);
    return *this;
}
TCIMReference::~TCIMReference() = default;

void TCIMReference::SetContainer(TContainer* container) { fBody->SetContainer(container); }
void TCIMReference::Clear() { fBody->Clear(); }
void TCIMReference::SetPath(const std::string& path) { fBody->SetPath(path); }
TCIMClass* TCIMReference::GetClass() const { return fBody->GetClass(); }
const std::string& TCIMReference::GetClassName() const { return GetClass()->GetName(); }
void TCIMReference::SetClassName(const std::string& name) { fBody->SetClassName(name); }
void TCIMReference::SetClass(TCIMClass& cls) { fBody->SetClass(cls); }
void TCIMReference::AddKeyValue(const std::string& name, const TCIMValue& value) { fBody->AddKeyValue(name, value); }
std::map<const std::string, const TCIMValue> TCIMReference::EnumerateKeyBindings() const { return fBody->Bindings(); }
void TCIMReference::SetKeyBindings(std::map<const std::string, const TCIMValue> bindings) {
    fBody->SetKeyBindings(std::move(bindings));
}
std::string TCIMReference::GetPath() const { return fBody->GetPath(); }
ICIMElement* TCIMReference::GetCIMElement() const { return fBody->GetCIMElement(); }
bool TCIMReference::operator==(const TCIMReference& other) const { return *fBody == *other.fBody; }
bool TCIMReference::operator<(const TCIMReference& other) const { return *fBody < *other.fBody; }
boost::shared_ptr<TCIMReferenceImpl> TCIMReference::GetBody() const { return fBody; }
