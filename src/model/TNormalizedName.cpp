#include "model/TNormalizedName.h"

#include <ctype.h>
#include <emmintrin.h>

#include <atomic>
#include <cstdint>
#include <cstring>

#include "platform/CoreLog.h"

namespace {

/// The tables of tolower, isalpha and isalnum, fetched once for a name. They are those of the host's locale.
struct TCharacterTables {
    const int* lower = *__ctype_tolower_loc();
    const unsigned short* classes = *__ctype_b_loc();
};

/// Writes the name in lower case; false if it is not a CIM name.
bool Normalize(std::string_view name, const TCharacterTables& tables, char* target) {
    bool isValid = true;
    unsigned short allowed = _ISalpha;
    for (const char character : name) {
        const auto c = static_cast<unsigned char>(tables.lower[static_cast<unsigned char>(character)]);
        isValid = isValid && (c == '_' || (tables.classes[c] & allowed) != 0);
        allowed = _ISalnum;
        *target++ = static_cast<char>(c);
    }
    return isValid;
}

// What the fast road does for ASCII without the tables.
constexpr bool IsDigit(char c) { return '0' <= c && c <= '9'; }
constexpr bool IsUpper(char c) { return 'A' <= c && c <= 'Z'; }
constexpr char Lower(char c) { return static_cast<char>(IsUpper(c) ? c + 'a' - 'A' : c); }
constexpr bool IsLetter(char c) { return IsUpper(c) || ('a' <= c && c <= 'z'); }

constexpr int kASCII = 128;

bool HasUsualLower(const int* lower) {
    for (int c = 0; c < kASCII; ++c)
        if (lower[c] != Lower(static_cast<char>(c))) return false;
    return true;
}

bool HasUsualClasses(const unsigned short* classes) {
    for (int c = 0; c < kASCII; ++c) {
        const bool isLetter = IsLetter(static_cast<char>(c)), isDigit = IsDigit(static_cast<char>(c));
        if (((classes[c] & _ISalpha) != 0) != isLetter) return false;
        if (((classes[c] & _ISalnum) != 0) != (isLetter || isDigit)) return false;
    }
    return true;
}

// The tables that were last found to treat ASCII as the C locale does.
std::atomic<const int*> gUsualLower = nullptr;
std::atomic<const unsigned short*> gUsualClasses = nullptr;

[[gnu::cold, gnu::noinline]] bool CheckTables(const TCharacterTables& tables) {
    if (!HasUsualLower(tables.lower) || !HasUsualClasses(tables.classes)) return false;
    gUsualLower.store(tables.lower, std::memory_order_relaxed);
    gUsualClasses.store(tables.classes, std::memory_order_relaxed);
    return true;
}

bool IsUsualASCII(const TCharacterTables& tables) {
    // The tables of a locale that was freed may have been where those of another one are now.
    return (tables.lower == gUsualLower.load(std::memory_order_relaxed) && tables.lower[int{'I'}] == 'i' &&
            tables.classes == gUsualClasses.load(std::memory_order_relaxed)) ||
           CheckTables(tables);
}

constexpr size_t kBlock = sizeof(__m128i);

/// All ones in the bytes from `first` on, `count` of them.
__m128i IsInRange(__m128i bytes, char first, char count) {
    const __m128i shifted = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(-128 - first)));
    return _mm_cmplt_epi8(shifted, _mm_set1_epi8(static_cast<char>(-128 + count)));
}

/// False if a character cannot stand in a name of ASCII characters.
bool NormalizeBlock(__m128i& block) {
    const __m128i isDigit = IsInRange(block, '0', 10), isUnderscore = _mm_cmpeq_epi8(block, _mm_set1_epi8('_'));
    block = _mm_or_si128(block, _mm_and_si128(IsInRange(block, 'A', 26), _mm_set1_epi8('a' - 'A')));
    const __m128i isLetter = IsInRange(block, 'a', 26);
    return _mm_movemask_epi8(_mm_or_si128(isLetter, _mm_or_si128(isDigit, isUnderscore))) == 0xffff;
}

/// The same for the first and the last characters of a name, as many as a T has bytes; they may overlap.
template <typename T>
bool NormalizeEnds(std::string_view name, char* target) {
    constexpr size_t kSize = sizeof(T);
    const size_t last = name.size() - kSize;
    T ends[2];
    std::memcpy(&ends[0], name.data(), kSize);
    std::memcpy(&ends[1], name.data() + last, kSize);
    __m128i block;
    for (size_t at = 0; at < kBlock; at += sizeof ends)
        std::memcpy(reinterpret_cast<char*>(&block) + at, ends, sizeof ends);
    const bool isName = NormalizeBlock(block);
    std::memcpy(ends, &block, sizeof ends);
    std::memcpy(target, &ends[0], kSize);
    std::memcpy(target + last, &ends[1], kSize);
    return isName;
}

bool NormalizeBlockAt(const char* source, char* target) {
    __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    const bool isName = NormalizeBlock(block);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), block);
    return isName;
}

/// Writes a name of ASCII characters in lower case, a block at a time. False if the tables have to decide about it.
bool NormalizeASCII(std::string_view name, char* target) {
    if (name.size() < sizeof(uint32_t) || IsDigit(name.front())) return false;
    if (name.size() < sizeof(uint64_t)) return NormalizeEnds<uint32_t>(name, target);
    if (name.size() < kBlock) return NormalizeEnds<uint64_t>(name, target);
    const size_t last = name.size() - kBlock;
    for (size_t at = 0; at < last; at += kBlock)
        if (!NormalizeBlockAt(name.data() + at, target + at)) return false;
    return NormalizeBlockAt(name.data() + last, target + last);
}

[[noreturn]] void RefuseName(std::string_view name) {
    LogAndThrow(kyrStatusInvalidCIMName, "CIM name '" + std::string(name) + "' is invalid");
}

}  // namespace

TNormalizedName::TNormalizedName(std::string_view name) {
    char* target = fBuffer;
    if (name.size() > kShort) {
        fLong.resize(name.size());
        target = fLong.data();
    }
    const TCharacterTables tables;
    if (!(IsUsualASCII(tables) && NormalizeASCII(name, target)) && !Normalize(name, tables, target)) RefuseName(name);
    fView = std::string_view(target, name.size());
}

bool TNormalizedName::IsUsualLocale() { return IsUsualASCII(TCharacterTables()); }
