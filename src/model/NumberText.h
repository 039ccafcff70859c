#ifndef KYR_MODEL_NUMBERTEXT_H
#define KYR_MODEL_NUMBERTEXT_H

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

/// Fast path for a text that is nothing but a decimal or "0x" number in range. False for any other text, including many
/// that ReadNumber takes.
template <typename T>
bool ReadPlainNumber(std::string_view text, T& number) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && text[2] != '-') {
        text.remove_prefix(2);
        base = 16;
    } else if (text.size() > 1 && (text[0] == '0' || (text[0] == '-' && text[1] == '0'))) {
        return false;
    }
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number, base);
    return error == std::errc() && end == last;
}

/// Reads a number at the beginning of a text, like a std::istream in the classic locale without a fixed base: the
/// prefixes "0x" and "0" choose the base, a bool is "true" or "false", and what follows the number is ignored. A number
/// out of range gives the nearest one in range; a text that is no number gives 0.
template <typename T>
T ReadNumber(const std::string& text);

/// The same, and stores the two characters that follow the number, blanks skipped. `first` and `second` keep their
/// values if the text ends before them or does not begin with a number.
unsigned long ReadNumberAndTail(const std::string& text, char& first, char& second);

/// Appends a decimal number, filled with leading zeros to the width.
void AppendPadded(std::string& text, unsigned long number, size_t width);

#endif
