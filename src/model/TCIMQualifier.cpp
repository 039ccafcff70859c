#include "kyr/TCIMQualifier.h"

#include <boost/make_shared.hpp>

#include "model/TCIMQualifierImpl.h"
#include "model/TContainerImpl.h"
#include "model/TSmallObject.h"

namespace {

template <typename... TArguments>
boost::shared_ptr<TCIMQualifierImpl> MakeBody(const TArguments&... arguments) {
    return boost::allocate_shared<TCIMQualifierImpl>(TSmallObjectAllocator<TCIMQualifierImpl>(), arguments...);
}

}  // namespace

TCIMQualifier::TCIMQualifier(const TCIMQualifierDecl& declaration, const TCIMValue& value)
    : TCIMQualifier(declaration, value, declaration.GetFlavor()) {}
TCIMQualifier::TCIMQualifier(const TCIMQualifierDecl& declaration, const TCIMValue& value,
                             TCIMQualifierDecl::EFlavor flavor)
    : fBody(MakeBody(declaration, value, flavor)) {}
TCIMQualifier::TCIMQualifier(const TCIMQualifier& other) : fBody(MakeBody(*other.fBody)) {}
TCIMQualifier::~TCIMQualifier() = default;

const std::string& TCIMQualifier::GetName() const { return GetDeclaration().GetName(); }
TCIMValue::TCIMType TCIMQualifier::GetType() const { return fBody->Value().GetType(); }
bool TCIMQualifier::IsArray() const { return fBody->Value().IsArray(); }
const TCIMQualifierDecl& TCIMQualifier::GetDeclaration() const { return fBody->GetDeclaration(); }
TCIMValue TCIMQualifier::GetValue() const { return fBody->Value(); }
TCIMQualifierDecl::EFlavor TCIMQualifier::GetFlavor() const { return fBody->GetFlavor(); }
bool TCIMQualifier::GetPropagated() const { return fBody->GetPropagated(); }
void TCIMQualifier::SetPropagated(bool propagated) { fBody->SetPropagated(propagated); }
void TCIMQualifier::SetValue(const TCIMValue& value) { fBody->SetValue(value); }
void TCIMQualifier::SetFlavor(TCIMQualifierDecl::EFlavor flavor) { fBody->SetFlavor(flavor); }
void TCIMQualifier::UnsetFlavor(TCIMQualifierDecl::EFlavor flavor) { fBody->UnsetFlavor(flavor); }
bool TCIMQualifier::operator==(const TCIMQualifier& other) const { return GetDeclaration() == other.GetDeclaration(); }
bool TCIMQualifier::operator<(const TCIMQualifier& other) const { return GetDeclaration() < other.GetDeclaration(); }
boost::shared_ptr<TCIMQualifierImpl> TCIMQualifier::GetBody() const { return fBody; }
