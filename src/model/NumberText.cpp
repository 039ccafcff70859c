#include "model/NumberText.h"

#include <algorithm>
#include <locale>
#include <sstream>
#include <type_traits>

namespace {
/// True for digits with at most one decimal point, and few enough to be in the range of a float: std::from_chars gives
/// the same number for them as a stream, faster.
bool IsPlainReal(std::string_view text) {
    if (!text.empty() && text[0] == '-') text.remove_prefix(1);
    const size_t whole = std::min(text.find_first_not_of("0123456789"), text.size());
    if (whole == 0 || text.size() > 30) return false;
    if (whole == text.size()) return true;
    if (text[whole] != '.') return false;
    text.remove_prefix(whole + 1);
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::istringstream NumberStream(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream.setf(std::ios_base::boolalpha);
    stream.unsetf(std::ios_base::dec);
    return stream;
}

template <typename T>
bool ReadQuickly(const std::string& text, T& number) {
    if constexpr (std::is_same_v<T, bool>) {
        number = text == "true";
        return number || text == "false";
    } else if constexpr (std::is_integral_v<T>) {
        return ReadPlainNumber(text, number);
    } else {
        return IsPlainReal(text) && std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
    }
}
}  // namespace

template <typename T>
T ReadNumber(const std::string& text) {
    T number{};
    if (ReadQuickly(text, number)) return number;
    number = T{};  // the stream does not set it if the text is blank
    NumberStream(text) >> number;
    return number;
}

template bool ReadNumber(const std::string&);
template unsigned short ReadNumber(const std::string&);
template short ReadNumber(const std::string&);
template unsigned int ReadNumber(const std::string&);
template int ReadNumber(const std::string&);
template unsigned long ReadNumber(const std::string&);
template long ReadNumber(const std::string&);
template float ReadNumber(const std::string&);
template double ReadNumber(const std::string&);

unsigned long ReadNumberAndTail(const std::string& text, char& first, char& second) {
    unsigned long number = 0;
    if (ReadPlainNumber(text, number)) return number;
    const size_t dots = text.find("..");
    if (dots != std::string::npos && ReadPlainNumber(std::string_view(text).substr(0, dots), number)) {
        first = second = '.';
        return number;
    }
    number = 0;
    NumberStream(text) >> number >> first >> second;
    return number;
}

void AppendPadded(std::string& text, unsigned long number, size_t width) {
    char digits[20];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    const auto length = static_cast<size_t>(end - digits);
    if (length < width) text.append(width - length, '0');
    text.append(digits, length);
}
