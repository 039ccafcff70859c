#include "model/TCIMNumericValueImpl.h"

#include <charconv>
#include <type_traits>

#include "kyr/TKYRException.h"

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
std::string TCIMNumericValueImpl<T>::ToString(unsigned char base) const {
    if (base != 8 && base != 10 && base != 16) throw TKYRException(kyrStatusNotSupported);
    return Print(fNumber, base);
}

template class TCIMNumericValueImpl<bool>;
template class TCIMNumericValueImpl<unsigned char>;
template class TCIMNumericValueImpl<signed char>;
template class TCIMNumericValueImpl<unsigned short>;
template class TCIMNumericValueImpl<short>;
template class TCIMNumericValueImpl<unsigned int>;
template class TCIMNumericValueImpl<int>;
template class TCIMNumericValueImpl<unsigned long>;
template class TCIMNumericValueImpl<long>;
template class TCIMNumericValueImpl<float>;
template class TCIMNumericValueImpl<double>;
