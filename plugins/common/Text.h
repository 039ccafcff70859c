#ifndef KYR_PLUGINS_COMMON_TEXT_H
#define KYR_PLUGINS_COMMON_TEXT_H

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Without blanks, line ends and NULs at either end.
std::string_view Trim(std::string_view text);
/// The parts between separators, trimmed; empty ones are left out.
std::vector<std::string_view> Split(std::string_view text, char separator);
/// The lines, without line ends; empty ones too.
std::vector<std::string_view> Lines(std::string_view text);
bool EndsWith(std::string_view text, std::string_view end);
/// With what the kernel writes as a backslash and three octal digits, such as blanks in paths, as it was.
std::string UnescapeOctal(std::string_view text);
/// Orders names with the numbers in them by value.
bool NaturalLess(std::string_view a, std::string_view b);

/// A whole text as a number that fits, or nothing.
template <typename T>
std::optional<T> ParseNumber(std::string_view text, int base = 10) {
    text = Trim(text);
    if (base == 16 && (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X")) text.remove_prefix(2);
    T number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return number;
}

#endif
