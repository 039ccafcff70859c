#ifndef KYR_PLUGINS_COMMON_TEXT_H
#define KYR_PLUGINS_COMMON_TEXT_H

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Removes blanks, line ends and NULs at both ends.
std::string_view Trim(std::string_view text);
/// The parts between separators, trimmed; empty ones are left out.
std::vector<std::string_view> Split(std::string_view text, char separator);
/// The words between blanks and line ends.
std::vector<std::string_view> Words(std::string_view text);
/// The lines without line ends, including empty ones.
std::vector<std::string_view> Lines(std::string_view text);
bool StartsWith(std::string_view text, std::string_view start);
bool EndsWith(std::string_view text, std::string_view end);
/// In small letters those of ASCII, whatever the locale.
std::string LowerCase(std::string_view text);
/// Decodes the octal escapes that the kernel writes, such as "\040" for a blank in a path.
std::string UnescapeOctal(std::string_view text);
/// The value of a line "key=value" in a uevent file.
std::optional<std::string> UeventValue(std::string_view text, std::string_view key);
/// The path of a swap area from the first column of /proc/swaps, where the kernel marks one whose name was removed.
struct TSwapPath {
    std::string path;
    bool isDeleted;
};
TSwapPath ParseSwapPath(std::string_view column);
/// Natural order: numbers within names are compared by value.
bool NaturalLess(std::string_view a, std::string_view b);

/// The text as a number; nothing if it is not a number or out of range.
template <typename T>
std::optional<T> ParseNumber(std::string_view text, int base = 10) {
    text = Trim(text);
    if (base == 16 && (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X")) text.remove_prefix(2);
    T number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return number;
}

/// A text that counts kilobytes of 1,024 bytes, as the kernel and package managers write sizes, in bytes; nothing if it
/// is not a number or out of range.
std::optional<uint64_t> ParseKilobytes(std::string_view text);

#endif
