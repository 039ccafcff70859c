#ifndef UTF8_H
#define UTF8_H

#include <cstddef>
#include <string_view>

struct TUtf8Character {
    unsigned int point = 0;
    size_t length = 0;  ///< in bytes; 0: what stands there is no UTF-8
};

/// The character at the start of a text that is not empty. Overlong forms, surrogates and numbers past the last are
/// none.
TUtf8Character FirstCharacter(std::string_view text);

struct TCharacterRange {
    unsigned int first;
    unsigned int last;
};

template <size_t count>
bool IsIn(const TCharacterRange (&ranges)[count], unsigned int point) {
    for (const TCharacterRange& range : ranges)
        if (point >= range.first && point <= range.last) return true;
    return false;
}

#endif
