#include "VisibleText.h"

#include <cstdio>

namespace {

struct TRange {
    unsigned int first;
    unsigned int last;
};

// Beyond ASCII: C1 controls, zero-width characters, line separators, and what changes the direction of writing.
constexpr TRange kHidden[] = {{0x80, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
                              {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}};

bool IsHidden(unsigned int point) {
    for (const TRange& range : kHidden)
        if (point >= range.first && point <= range.last) return true;
    return false;
}

struct TSequence {
    unsigned int point = 0;
    size_t length = 0;  // 0: no UTF-8
};

unsigned int ByteAt(std::string_view text, size_t index) { return static_cast<unsigned char>(text[index]); }

// The multi-byte sequence at the start of the text. Overlong forms, surrogates and numbers past the last are none.
TSequence Decode(std::string_view text) {
    const unsigned int lead = ByteAt(text, 0);
    const size_t length = lead >= 0xF0 && lead < 0xF8 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
    if (length == 0 || lead >= 0xF8 || text.size() < length) return {};
    unsigned int point = lead & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((ByteAt(text, i) & 0xC0) != 0x80) return {};
        point = point << 6 | (ByteAt(text, i) & 0x3F);
    }
    constexpr unsigned int kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
    if (point < kSmallest[length] || point > 0x10FFFF || surrogate) return {};
    return {point, length};
}

std::string Escape(const char* format, unsigned int number) {
    char text[16];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string EscapeControl(unsigned int byte) {
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

// Appends what stands at the start of the text and gives the number of bytes that it took.
size_t AppendVisible(std::string& result, std::string_view text) {
    const unsigned int byte = ByteAt(text, 0);
    if (byte < 0x80) {
        if (byte < 0x20 || byte == 0x7F)
            result += EscapeControl(byte);
        else
            result += text[0];
        return 1;
    }
    const TSequence sequence = Decode(text);
    if (sequence.length == 0) {
        result += EscapeControl(byte);
        return 1;
    }
    if (IsHidden(sequence.point))
        result += Escape("\\u%04X", sequence.point);
    else
        result += text.substr(0, sequence.length);
    return sequence.length;
}

}  // namespace

std::string VisibleText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) text.remove_prefix(AppendVisible(result, text));
    return result;
}
