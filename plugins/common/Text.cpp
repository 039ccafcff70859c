#include "Text.h"

#include <algorithm>

namespace {

constexpr const char* kBlanks = " \t\r\n\v\f";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Removes the digits at the front of the text and returns them without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
    size_t end = 0;
    while (end < text.size() && IsDigit(text[end])) ++end;
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    while (number.size() > 1 && number[0] == '0') number.remove_prefix(1);
    return number;
}

}  // namespace

std::string_view Trim(std::string_view text) {
    const auto isBlank = [](char c) {
        return c == '\0' || std::string_view(kBlanks).find(c) != std::string_view::npos;
    };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const size_t end = std::min(text.find(separator), text.size());
        if (const std::string_view part = Trim(text.substr(0, end)); !part.empty()) parts.push_back(part);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::vector<std::string_view> Words(std::string_view text) {
    std::vector<std::string_view> words;
    for (size_t at = text.find_first_not_of(kBlanks); at < text.size(); at = text.find_first_not_of(kBlanks, at)) {
        const size_t end = std::min(text.find_first_of(kBlanks, at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

std::vector<std::string_view> Lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
    return lower;
}

std::string UnescapeOctal(std::string_view text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto code = text[i] == '\\' && text.size() >= i + 4 ? ParseNumber<unsigned char>(text.substr(i + 1, 3), 8)
                                                                  : std::nullopt;
        plain += code ? static_cast<char>(*code) : text[i];
        if (code) i += 3;
    }
    return plain;
}

std::optional<std::string> UeventValue(std::string_view text, std::string_view key) {
    for (const std::string_view line : Lines(text))
        if (line.size() > key.size() && line.substr(0, key.size()) == key && line[key.size()] == '=')
            return std::string(Trim(line.substr(key.size() + 1)));
    return std::nullopt;
}

TSwapPath ParseSwapPath(std::string_view column) {
    constexpr std::string_view kMark = "\\040(deleted)";
    const bool isDeleted = EndsWith(column, kMark);
    if (isDeleted) column.remove_suffix(kMark.size());
    return {UnescapeOctal(column), isDeleted};
}

std::optional<uint64_t> ParseKilobytes(std::string_view text) {
    constexpr uint64_t kBytes = 1024;
    const std::optional<uint64_t> kilobytes = ParseNumber<uint64_t>(text);
    return kilobytes && *kilobytes <= UINT64_MAX / kBytes ? std::optional(*kilobytes * kBytes) : std::nullopt;
}

bool NaturalLess(std::string_view a, std::string_view b) {
    const std::string_view wholeA = a, wholeB = b;
    while (!a.empty() && !b.empty()) {
        if (IsDigit(a[0]) && IsDigit(b[0])) {
            const std::string_view first = TakeNumber(a), second = TakeNumber(b);
            if (first.size() != second.size()) return first.size() < second.size();
            if (first != second) return first < second;
        } else if (a[0] != b[0]) {
            return a[0] < b[0];
        } else {
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    if (a.empty() && b.empty()) return wholeA < wholeB;
    return a.empty();
}
