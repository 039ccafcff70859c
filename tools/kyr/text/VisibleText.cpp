#include "text/VisibleText.h"

#include <algorithm>
#include <cstdio>

#include "text/Utf8.h"

namespace {

// Beyond ASCII: C1 controls, zero-width characters, line separators, and what changes the direction of writing.
constexpr TCharacterRange kHidden[] = {{0x80, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
                                       {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}};

std::string Escape(const char* format, unsigned int number) {
    char text[16];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

bool IsControl(unsigned int point) { return point < 0x20 || point == 0x7F; }

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

// Both append what stands at the start of the text and give the number of bytes that it took.
size_t AppendVisible(std::string& result, std::string_view text) {
    const TUtf8Character character = FirstCharacter(text);
    if (character.length == 0 || IsControl(character.point)) {
        result += EscapeByte(static_cast<unsigned char>(text[0]));
        return 1;
    }
    if (IsHiddenCharacter(character.point))
        result += EscapedCharacter(character.point);
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

bool IsPlain(char c) { return c >= 0x20 && c < 0x7F; }

template <typename TAppend>
std::string Converted(std::string_view text, TAppend append) {
    const auto plain = std::find_if_not(text.begin(), text.end(), IsPlain);
    std::string result(text.begin(), plain);
    text.remove_prefix(result.size());
    while (!text.empty()) text.remove_prefix(append(result, text));
    return result;
}

}  // namespace

std::string VisibleText(std::string_view text) { return Converted(text, AppendVisible); }

std::string ValidText(std::string_view text) { return Converted(text, AppendValid); }

bool IsHiddenCharacter(unsigned int point) { return IsIn(kHidden, point); }

std::string EscapedCharacter(unsigned int point) { return Escape("\\u%04X", point); }
