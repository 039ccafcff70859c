#include "kyr/TCIMProperty.h"

#include <memory>

#include "kyr/TCIMPropertyDecl.h"
#include "model/TCIMPropertyImpl.h"
#include "model/TReferenceIndex.h"

TCIMProperty::TCIMProperty(const TCIMPropertyDecl& declaration) : fBody(new TCIMPropertyImpl(declaration)) {}
TCIMProperty::TCIMProperty(const TCIMPropertyDecl& declaration, const TCIMValue& value) : TCIMProperty(declaration) {
    SetValue(value);
}
TCIMProperty::TCIMProperty(const TCIMProperty& other) : fBody(new TCIMPropertyImpl(*other.fBody)) {}
TCIMProperty& TCIMProperty::operator=(const TCIMProperty& other) {
    if (this == &other) return *this;
    auto body =
        std::make_unique<TCIMPropertyImpl>(*other.fBody);  // before anything is changed, because the copy may raise
    delete fBody;
    fBody = body.release();
    TReferenceIndex::NoteChange();
    return *this;
}
TCIMProperty::~TCIMProperty() { delete fBody; }

std::string TCIMProperty::GetName() const { return GetDeclaration().GetName(); }
TCIMValue::TCIMType TCIMProperty::GetType() const { return GetDeclaration().GetType(); }
bool TCIMProperty::IsArray() const { return GetDeclaration().IsArray(); }
const TCIMPropertyDecl& TCIMProperty::GetDeclaration() const { return fBody->GetDeclaration(); }
TCIMValue TCIMProperty::GetValue() const { return fBody->GetValue(); }
TCIMValue TCIMProperty::GetPrevValue() const { return fBody->GetPrevValue(); }
void TCIMProperty::SetValue(const TCIMValue& value) { fBody->SetValue(value); }
void TCIMProperty::SetPrevValue(TCIMValue value) { fBody->SetPrevValue(value); }
void TCIMProperty::SetPrevValue() { fBody->SetPrevValue(); }
bool TCIMProperty::IsPrevValueDifferent() const { return fBody->IsPrevValueDifferent(); }
bool TCIMProperty::GetPropagated() const { return fBody->GetPropagated(); }
bool TCIMProperty::operator==(const TCIMProperty& other) const { return *fBody == *other.fBody; }
bool TCIMProperty::operator<(const TCIMProperty& other) const { return *fBody < *other.fBody; }
std::string TCIMProperty::ToString() const { return fBody->ToString(); }
std::vector<std::string> TCIMProperty::ToStringVector() const { return fBody->ToStringVector(); }
std::string TCIMProperty::PrevToString() const { return fBody->PrevToString(); }
std::vector<std::string> TCIMProperty::PrevToStringVector() const { return fBody->PrevToStringVector(); }
TCIMPropertyImpl* TCIMProperty::GetBody() const { return fBody; }
