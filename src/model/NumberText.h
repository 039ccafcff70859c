#ifndef KYR_MODEL_NUMBERTEXT_H
#define KYR_MODEL_NUMBERTEXT_H

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

/// Reads a whole text of nothing but a decimal or "0x" number that fits; false for every other text, also for many
/// that a stream would read.
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

/// Reads a number at the beginning of a text as an input stream of the classic locale does that forces no base: "0x"
/// and "0" prefixes count, a bool is "true" or "false", the rest of the text is not looked at, a number out of range
/// gives the nearest one, and text that is no number 0. For bool, the integers from 16 bits up, float and double.
template <typename T>
T ReadNumber(const std::string& text);

/// The same for the number of a text that goes on: the first two characters behind it, blanks skipped, go to `first`
/// and `second`, which stay as they are where the text ends or was no number.
unsigned long ReadNumberAndTail(const std::string& text, char& first, char& second);

/// Appends a decimal number, filled with leading zeros to the width.
void AppendPadded(std::string& text, unsigned long number, size_t width);

#endif
