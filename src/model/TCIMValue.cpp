#include "kyr/TCIMValue.h"

#include "kyr/TKYRException.h"
#include "model/NumberText.h"
#include "model/TCIMArrayValueImpl.h"
#include "model/TCIMDateTimeValueImpl.h"
#include "model/TCIMNumericValueImpl.h"
#include "model/TCIMReferenceValueImpl.h"
#include "model/TCIMStringValueImpl.h"
#include "model/TCIMValueTransfer.h"

namespace {
using TType = TCIMValue::TCIMType;

TType::ECIMType ArrayTypeOf(TType type) { return static_cast<TType::ECIMType>(type | TType::eCIMArrayFlag); }

template <typename TBody>
TCIMValueImpl* CopyAs(const TCIMValueImpl* source) {
    return source != nullptr ? new TBody(static_cast<const TBody&>(*source)) : nullptr;
}

// Null for null. Raises for the types of which there are no bodies.
TCIMValueImpl* CopyOf(const TCIMValueImpl* source, TType type) {
    if (type & TType::eCIMArrayFlag) return CopyAs<TCIMArrayValueImpl>(source);
    switch (type) {
        case TType::eCIMBoolean:
            return CopyAs<TCIMNumericValueImpl<bool>>(source);
        case TType::eCIMUint8:
            return CopyAs<TCIMNumericValueImpl<unsigned char>>(source);
        case TType::eCIMSint8:
            return CopyAs<TCIMNumericValueImpl<signed char>>(source);
        case TType::eCIMUint16:
            return CopyAs<TCIMNumericValueImpl<unsigned short>>(source);
        case TType::eCIMSint16:
            return CopyAs<TCIMNumericValueImpl<short>>(source);
        case TType::eCIMUint32:
            return CopyAs<TCIMNumericValueImpl<unsigned int>>(source);
        case TType::eCIMSint32:
            return CopyAs<TCIMNumericValueImpl<int>>(source);
        case TType::eCIMUint64:
            return CopyAs<TCIMNumericValueImpl<unsigned long>>(source);
        case TType::eCIMSint64:
            return CopyAs<TCIMNumericValueImpl<long>>(source);
        case TType::eCIMReal32:
            return CopyAs<TCIMNumericValueImpl<float>>(source);
        case TType::eCIMReal64:
            return CopyAs<TCIMNumericValueImpl<double>>(source);
        case TType::eCIMString:
            return CopyAs<TCIMStringValueImpl>(source);
        case TType::eCIMDateTime:
            return CopyAs<TCIMDateTimeValueImpl>(source);
        case TType::eCIMReference:
            return CopyAs<TCIMReferenceValueImpl>(source);
        default:
            throw TKYRException(kyrStatusTypeMismatch);
    }
}

// The copy of what a value is to hold comes before its old body goes: what is copied may be the value itself (a NaN
// equals nothing), an element of it, or the array whose element it is. After a failure it is a NULL of the new type.
template <typename TCopy>
auto CopyOrSetNull(TCIMValue& value, TType type, unsigned int maxArraySize, TCopy&& copy) {
    try {
        return copy();
    } catch (...) {
        value.SetNullValue(type, maxArraySize);
        throw;
    }
}

const TCIMValueImpl& Held(const TCIMValueImpl* body, TType type, TType::ECIMType wanted) {
    if (body == nullptr) throw TKYRException(kyrStatusValueIsNULL);
    if (type != wanted) throw TKYRException(kyrStatusTypeMismatch);
    return *body;
}

void SetFromText(TCIMValue& value, TType type, const std::string& text, TContainer& container) {
    switch (type) {
        case TType::eCIMBoolean:
            return value.Set(ReadNumber<bool>(text));
        case TType::eCIMUint8:
            return value.Set(static_cast<unsigned char>(ReadNumber<unsigned int>(text)));
        case TType::eCIMSint8:
            return value.Set(static_cast<signed char>(ReadNumber<int>(text)));
        case TType::eCIMUint16:
            return value.Set(ReadNumber<unsigned short>(text));
        case TType::eCIMSint16:
            return value.Set(ReadNumber<short>(text));
        case TType::eCIMUint32:
            return value.Set(ReadNumber<unsigned int>(text));
        case TType::eCIMSint32:
            return value.Set(ReadNumber<int>(text));
        case TType::eCIMUint64:
            return value.Set(ReadNumber<unsigned long>(text));
        case TType::eCIMSint64:
            return value.Set(ReadNumber<long>(text));
        case TType::eCIMReal32:
            return value.Set(ReadNumber<float>(text));
        case TType::eCIMReal64:
            return value.Set(ReadNumber<double>(text));
        case TType::eCIMString:
            return value.Set(text);
        case TType::eCIMDateTime:
            return value.Set(TCIMDateTime(text));
        case TType::eCIMReference:
            return value.Set(TCIMReference(&container, text));
        default:
            throw TKYRException(kyrStatusTypeMismatch);
    }
}
}  // namespace

TCIMValue::TCIMValue() : fType(TType::eCIMNone), fMaxArraySize(0), fBody(nullptr), fReferencedClass(nullptr) {}
TCIMValue::TCIMValue(const TCIMValue& other) : TCIMValue() { Set(other); }
TCIMValue::TCIMValue(bool value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned char value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(signed char value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned short value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(short value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned int value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(int value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned long value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(long value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(float value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(double value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const std::string& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const char* value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const TCIMDateTime& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const TCIMReference& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(TCIMType type, unsigned int maxArraySize) : TCIMValue() {
    fType = maxArraySize != 0 ? ArrayTypeOf(type) : static_cast<TType::ECIMType>(type);
    fMaxArraySize = maxArraySize;
}
TCIMValue::TCIMValue(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements) : TCIMValue() {
    Set(type, maxArraySize, elements);
}
TCIMValue::TCIMValue(TCIMType type, std::string& text, TContainer& container) : TCIMValue() {
    SetFromText(*this, type, text, container);
}
TCIMValue::~TCIMValue() { delete fBody; }

TCIMValue& TCIMValue::operator=(const TCIMValue& other) {
    Set(other);
    return *this;
}

void TCIMValue::Set(bool value) {
    TCIMValueTransfer::Install(*this, TType::eCIMBoolean, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(unsigned char value) {
    TCIMValueTransfer::Install(*this, TType::eCIMUint8, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(signed char value) {
    TCIMValueTransfer::Install(*this, TType::eCIMSint8, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(unsigned short value) {
    TCIMValueTransfer::Install(*this, TType::eCIMUint16, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(short value) {
    TCIMValueTransfer::Install(*this, TType::eCIMSint16, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(unsigned int value) {
    TCIMValueTransfer::Install(*this, TType::eCIMUint32, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(int value) {
    TCIMValueTransfer::Install(*this, TType::eCIMSint32, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(unsigned long value) {
    TCIMValueTransfer::Install(*this, TType::eCIMUint64, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(long value) {
    TCIMValueTransfer::Install(*this, TType::eCIMSint64, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(float value) {
    TCIMValueTransfer::Install(*this, TType::eCIMReal32, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(double value) {
    TCIMValueTransfer::Install(*this, TType::eCIMReal64, new TCIMNumericValueImpl(value));
}
void TCIMValue::Set(const std::string& value) {
    TCIMValueTransfer::Install(*this, TType::eCIMString, new TCIMStringValueImpl(value));
}
void TCIMValue::Set(const char* value) {
    TCIMValueTransfer::Install(*this, TType::eCIMString, new TCIMStringValueImpl(value));
}
void TCIMValue::Set(const TCIMDateTime& value) {
    TCIMValueTransfer::Install(*this, TType::eCIMDateTime, new TCIMDateTimeValueImpl(value));
}
void TCIMValue::Set(const TCIMReference& value) {
    TCIMValueTransfer::Install(*this, TType::eCIMReference, new TCIMReferenceValueImpl(value));
    fReferencedClass = value.GetClass();
}
void TCIMValue::Set(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements) {
    std::vector<TCIMValue> copies = CopyOrSetNull(*this, ArrayTypeOf(type), maxArraySize, [&] { return elements; });
    TCIMValueTransfer::SetArray(*this, type, maxArraySize, copies);
}
void TCIMValue::Set(const TCIMValue& other) {
    if (*this == other) return;
    const auto copyBody = [&] { return CopyOf(other.fBody, other.fType); };
    TCIMValueImpl* const body = CopyOrSetNull(*this, other.fType, other.fMaxArraySize, copyBody);
    if (other.IsArray()) fMaxArraySize = other.fMaxArraySize;
    if (other.IsReference()) fReferencedClass = other.fReferencedClass;
    TCIMValueTransfer::Install(*this, other.fType, body);
}
void TCIMValue::SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize) {
    TCIMValueTransfer::Install(*this, type, nullptr);
    if (IsArray()) fMaxArraySize = maxArraySize;
}

void TCIMValue::SetReferencedClass(TCIMClass& cls) {
    if (!IsNull()) throw TKYRException(kyrStatusInvalidOpSequence);
    fReferencedClass = &cls;
}

TCIMValue::operator bool() const { return Held(fBody, fType, TType::eCIMBoolean).operator bool(); }
TCIMValue::operator unsigned char() const { return Held(fBody, fType, TType::eCIMUint8).operator unsigned char(); }
TCIMValue::operator signed char() const { return Held(fBody, fType, TType::eCIMSint8).operator signed char(); }
TCIMValue::operator unsigned short() const { return Held(fBody, fType, TType::eCIMUint16).operator unsigned short(); }
TCIMValue::operator short() const { return Held(fBody, fType, TType::eCIMSint16).operator short(); }
TCIMValue::operator unsigned int() const { return Held(fBody, fType, TType::eCIMUint32).operator unsigned int(); }
TCIMValue::operator int() const { return Held(fBody, fType, TType::eCIMSint32).operator int(); }
TCIMValue::operator unsigned long() const { return Held(fBody, fType, TType::eCIMUint64).operator unsigned long(); }
TCIMValue::operator long() const { return Held(fBody, fType, TType::eCIMSint64).operator long(); }
TCIMValue::operator float() const { return Held(fBody, fType, TType::eCIMReal32).operator float(); }
TCIMValue::operator double() const { return Held(fBody, fType, TType::eCIMReal64).operator double(); }
TCIMValue::operator std::string() const { return Held(fBody, fType, TType::eCIMString).operator std::string(); }
TCIMValue::operator TCIMDateTime() const { return Held(fBody, fType, TType::eCIMDateTime).operator TCIMDateTime(); }
TCIMValue::operator TCIMReference() const { return Held(fBody, fType, TType::eCIMReference).operator TCIMReference(); }
TCIMValue::operator std::vector<TCIMValue>&() const {
    return Held(fBody, fType, ArrayTypeOf(fType)).operator std::vector<TCIMValue>&();
}

std::string TCIMValue::ToString(unsigned char base) const {
    if (IsNull()) throw TKYRException(kyrStatusValueIsNULL);
    return fBody->ToString(base);
}

bool TCIMValue::operator==(const TCIMValue& other) const {
    if (IsNull() != other.IsNull() || fType != other.fType) return false;
    if (!IsNull()) return *fBody == other;
    if (IsReference()) return fReferencedClass == other.fReferencedClass;
    return !IsArray() || fMaxArraySize == other.fMaxArraySize;
}
bool TCIMValue::operator!=(const TCIMValue& other) const { return !(*this == other); }
bool TCIMValue::operator<(const TCIMValue& other) const {
    if (IsNull() || other.IsNull()) return IsNull() && !other.IsNull();
    if (fType != other.fType) return fType < other.fType;
    return *fBody < other;
}
bool TCIMValue::operator>(const TCIMValue& other) const { return !(*this == other) && !(*this < other); }
bool TCIMValue::operator>=(const TCIMValue& other) const { return !(*this < other); }
bool TCIMValue::operator<=(const TCIMValue& other) const { return *this == other || *this < other; }
