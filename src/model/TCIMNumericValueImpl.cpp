#include "model/TCIMNumericValueImpl.h"

#include <charconv>
#include <type_traits>

#include "kyr/TKYRException.h"
#include "model/TCIMValueTransfer.h"

namespace {
constexpr size_t kLongestNumber = 24;

template <typename T>
std::string ToBase(T value, int base) {
    char digits[kLongestNumber];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value, base).ptr);
}

// With leading zeros up to the width of the type, in capitals.
template <typename T>
std::string ToHexadecimal(T value) {
    std::string text(2 * sizeof value, '0');
    unsigned long rest = value;
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, rest >>= 4) *digit = "0123456789ABCDEF"[rest & 15];
    return text;
}

std::string Print(bool value, unsigned char) { return value ? "true" : "false"; }

// Six significant digits, the default of a stream.
std::string Print(double value, unsigned char base) {
    if (base != 10) throw TKYRException(kyrStatusNotSupported);
    char digits[kLongestNumber];
    char* const end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6).ptr;
    return std::string(digits, end);
}

std::string Print(float value, unsigned char base) { return Print(static_cast<double>(value), base); }

template <typename T>
std::string Print(T value, unsigned char base) {
    if constexpr (std::is_signed_v<T>) {
        if (base != 10) throw TKYRException(kyrStatusNotSupported);
    } else if (base == 16) {
        return ToHexadecimal(value);
    }
    return ToBase(value, base);
}
}  // namespace

template <typename T>
T TCIMNumericValueImpl::Read(T TNumber::*member, TType::ECIMType type) const {
    if (fType != type) throw TKYRException(kyrStatusTypeMismatch);
    return fNumber.*member;
}

template <typename TVisitor>
auto TCIMNumericValueImpl::Visit(TVisitor visit) const {
    switch (fType) {
        case TType::eCIMBoolean:
            return visit(&TNumber::fBoolean);
        case TType::eCIMUint8:
            return visit(&TNumber::fUint8);
        case TType::eCIMSint8:
            return visit(&TNumber::fSint8);
        case TType::eCIMUint16:
            return visit(&TNumber::fUint16);
        case TType::eCIMSint16:
            return visit(&TNumber::fSint16);
        case TType::eCIMUint32:
            return visit(&TNumber::fUint32);
        case TType::eCIMSint32:
            return visit(&TNumber::fSint32);
        case TType::eCIMUint64:
            return visit(&TNumber::fUint64);
        case TType::eCIMSint64:
            return visit(&TNumber::fSint64);
        case TType::eCIMReal32:
            return visit(&TNumber::fReal32);
        case TType::eCIMReal64:
            return visit(&TNumber::fReal64);
        default:
            throw TKYRException(kyrStatusNotImplemented);
    }
}

TCIMNumericValueImpl::operator bool() const { return Read(&TNumber::fBoolean, TType::eCIMBoolean); }
TCIMNumericValueImpl::operator unsigned char() const { return Read(&TNumber::fUint8, TType::eCIMUint8); }
TCIMNumericValueImpl::operator signed char() const { return Read(&TNumber::fSint8, TType::eCIMSint8); }
TCIMNumericValueImpl::operator unsigned short() const { return Read(&TNumber::fUint16, TType::eCIMUint16); }
TCIMNumericValueImpl::operator short() const { return Read(&TNumber::fSint16, TType::eCIMSint16); }
TCIMNumericValueImpl::operator unsigned int() const { return Read(&TNumber::fUint32, TType::eCIMUint32); }
TCIMNumericValueImpl::operator int() const { return Read(&TNumber::fSint32, TType::eCIMSint32); }
TCIMNumericValueImpl::operator unsigned long() const { return Read(&TNumber::fUint64, TType::eCIMUint64); }
TCIMNumericValueImpl::operator long() const { return Read(&TNumber::fSint64, TType::eCIMSint64); }
TCIMNumericValueImpl::operator float() const { return Read(&TNumber::fReal32, TType::eCIMReal32); }
TCIMNumericValueImpl::operator double() const { return Read(&TNumber::fReal64, TType::eCIMReal64); }

std::string TCIMNumericValueImpl::ToString(unsigned char base) const {
    if (base != 8 && base != 10 && base != 16) throw TKYRException(kyrStatusNotSupported);
    return Visit([&](auto member) { return Print(fNumber.*member, base); });
}

bool TCIMNumericValueImpl::operator==(const TCIMValue& other) const {
    if (other.GetType() != fType) return false;
    const TNumber& number = TCIMValueTransfer::BodyOf<TCIMNumericValueImpl>(other).fNumber;
    return Visit([&](auto member) { return fNumber.*member == number.*member; });
}

bool TCIMNumericValueImpl::operator<(const TCIMValue& other) const {
    if (other.GetType() != fType) return false;
    const TNumber& number = TCIMValueTransfer::BodyOf<TCIMNumericValueImpl>(other).fNumber;
    return Visit([&](auto member) { return fNumber.*member < number.*member; });
}
