#include "text/Utf8.h"

namespace {

unsigned int ByteAt(std::string_view text, size_t index) { return static_cast<unsigned char>(text[index]); }

}  // namespace

TUtf8Character FirstCharacter(std::string_view text) {
    const unsigned int lead = ByteAt(text, 0);
    if (lead < 0x80) return {lead, 1};
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
