#include "base/Text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdio>

namespace {

struct TCharacter {
    unsigned int codePoint = 0;
    size_t length = 0;  // in bytes; 0: there is no valid UTF-8 here
};

// The character at the start of a text that is not empty.
TCharacter FirstCharacter(std::string_view text) {
    utf8proc_int32_t codePoint = 0;
    const auto bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const utf8proc_ssize_t length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    if (length <= 0) return {};
    return {static_cast<unsigned int>(codePoint), static_cast<size_t>(length)};
}

struct TCharacterRange {
    unsigned int first;
    unsigned int last;
};

// C1 controls, zero-width characters, line separators, and what changes the direction of writing.
constexpr TCharacterRange kHidden[] = {{0x80, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
                                       {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}};

std::string Escape(const char* format, unsigned int number) {
    char text[16];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

bool IsControl(unsigned int codePoint) { return codePoint < 0x20 || codePoint == 0x7F; }

std::string EscapeByte(unsigned int byte) {
    switch (byte) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return Escape("\\x%02X", byte);
    }
}

// AppendVisible and AppendValid append the first character of the text in its converted form, and return how many bytes
// of the text it had.
size_t AppendVisible(std::string& result, std::string_view text) {
    const TCharacter character = FirstCharacter(text);
    if (character.length == 0 || IsControl(character.codePoint)) {
        result += EscapeByte(static_cast<unsigned char>(text[0]));
        return 1;
    }
    if (IsHiddenCharacter(character.codePoint))
        result += EscapedCharacter(character.codePoint);
    else
        result += text.substr(0, character.length);
    return character.length;
}

size_t AppendValid(std::string& result, std::string_view text) {
    const size_t length = FirstCharacter(text).length;
    if (length == 0) return AppendVisible(result, text);
    result += text.substr(0, length);
    return length;
}

bool IsPrintable(char c) { return c >= 0x20 && c < 0x7F; }

// Most texts are printable ASCII, which needs no conversion: its start is copied as a whole.
template <typename TAppend>
std::string Converted(std::string_view text, TAppend append) {
    if (IsPrintableAscii(text)) return std::string(text);
    const auto plain = std::find_if_not(text.begin(), text.end(), IsPrintable);
    std::string result(text.begin(), plain);
    text.remove_prefix(result.size());
    while (!text.empty()) text.remove_prefix(append(result, text));
    return result;
}

struct TExtent {
    size_t length;
    size_t columns;
};

TExtent ExtentOfFirst(std::string_view visible) {
    const TCharacter character = FirstCharacter(visible);
    if (character.length == 0) return {1, 1};
    return {character.length, static_cast<size_t>(utf8proc_charwidth(static_cast<int>(character.codePoint)))};
}

// How many bytes of the text fit into the width. At least one character, so that each line makes progress.
size_t LengthOfFitting(std::string_view visible, size_t width) {
    if (visible.size() <= width) return visible.size();
    size_t length = 0, columns = 0;
    while (length < visible.size()) {
        const TExtent next = ExtentOfFirst(visible.substr(length));
        columns += next.columns;
        if (columns > width && length > 0) break;
        length += next.length;
    }
    return length;
}

// The length of the first line: up to the last blank at which it can be broken, or all that fits if there is none.
size_t LengthOfLine(std::string_view visible, size_t width) {
    const size_t fitting = LengthOfFitting(visible, width);
    if (fitting == visible.size() || visible[fitting] == ' ') return fitting;
    const size_t blank = visible.substr(0, fitting).find_last_of(' ');
    return blank == std::string_view::npos || visible.find_first_not_of(' ') > blank ? fitting : blank;
}

std::string_view WithoutBlanksAtEnd(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

bool IsContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

// Without an early end, so that the compiler looks at many characters at once.
bool IsPrintableAscii(std::string_view text) {
    bool isPrintable = true;
    for (const char c : text) isPrintable &= IsPrintable(c);
    return isPrintable;
}

std::string VisibleText(std::string_view text) { return Converted(text, AppendVisible); }

std::string ValidText(std::string_view text) { return Converted(text, AppendValid); }

bool IsHiddenCharacter(unsigned int codePoint) {
    return std::any_of(std::begin(kHidden), std::end(kHidden), [codePoint](const TCharacterRange& range) {
        return codePoint >= range.first && codePoint <= range.last;
    });
}

std::string EscapedCharacter(unsigned int codePoint) { return Escape("\\u%04X", codePoint); }

size_t ColumnsOf(std::string_view visible) {
    if (IsPrintableAscii(visible)) return visible.size();
    size_t columns = 0;
    while (!visible.empty()) {
        const TExtent next = ExtentOfFirst(visible);
        columns += next.columns;
        visible.remove_prefix(next.length);
    }
    return columns;
}

std::vector<std::string> WrapText(std::string_view visible, size_t width) {
    std::vector<std::string> lines;
    do {
        const size_t length = LengthOfLine(visible, width);
        lines.emplace_back(WithoutBlanksAtEnd(visible.substr(0, length)));
        visible.remove_prefix(length);
        visible.remove_prefix(std::min(visible.find_first_not_of(' '), visible.size()));
    } while (!visible.empty());
    return lines;
}

std::string CutText(const std::string& text, size_t size) {
    if (text.size() <= size) return text;
    size_t end = size;
    while (end > 0 && IsContinuationByte(text[end])) --end;
    return text.substr(0, end) + "...";
}

std::string LowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string Join(const std::vector<std::string>& texts, const char* separator) {
    std::string joined;
    for (size_t i = 0; i < texts.size(); ++i) joined += (i == 0 ? "" : separator) + texts[i];
    return joined;
}

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}
