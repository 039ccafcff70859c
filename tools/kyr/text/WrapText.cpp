#include "text/WrapText.h"

#include <algorithm>

#include "text/Utf8.h"

namespace {

// Those that take two columns, and those that stand above or below another.
constexpr TCharacterRange kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                                     {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                     {0xFFE0, 0xFFE6}, {0x1F300, 0x1F9FF}, {0x20000, 0x3FFFD}};
constexpr TCharacterRange kCombining[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x064B, 0x065F},
                                          {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};

struct TExtent {
    size_t length;
    size_t columns;
};

TExtent FirstOf(std::string_view visible) {
    const TUtf8Character character = FirstCharacter(visible);
    if (character.length == 0) return {1, 1};
    if (IsIn(kCombining, character.point)) return {character.length, 0};
    return {character.length, IsIn(kWide, character.point) ? size_t{2} : size_t{1}};
}

// How many bytes fit, at least one character.
size_t LengthOfFitting(std::string_view visible, size_t width) {
    if (visible.size() <= width) return visible.size();
    size_t length = 0, columns = 0;
    while (length < visible.size()) {
        const TExtent next = FirstOf(visible.substr(length));
        columns += next.columns;
        if (columns > width && length > 0) break;
        length += next.length;
    }
    return length;
}

// The length of the first line: up to the last blank that may end it, or all that fits.
size_t LengthOfLine(std::string_view visible, size_t width) {
    const size_t fitting = LengthOfFitting(visible, width);
    if (fitting == visible.size() || visible[fitting] == ' ') return fitting;
    const size_t blank = visible.substr(0, fitting).find_last_of(' ');
    return blank == std::string_view::npos || visible.find_first_not_of(' ') > blank ? fitting : blank;
}

std::string_view WithoutBlanksAtEnd(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

}  // namespace

size_t ColumnsOf(std::string_view visible) {
    size_t columns = 0;
    while (!visible.empty()) {
        const TExtent next = FirstOf(visible);
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
