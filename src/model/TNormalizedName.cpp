#include "model/TNormalizedName.h"

#include <ctype.h>
#include <emmintrin.h>

#include <atomic>
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

bool IsUsual(const TCharacterTables& tables) {
    return (tables.lower == gUsualLower.load(std::memory_order_relaxed) &&
            tables.classes == gUsualClasses.load(std::memory_order_relaxed)) ||
           CheckTables(tables);
}

constexpr size_t kBlock = sizeof(__m128i);

/// All ones in the bytes from `first` on, `count` of them.
__m128i IsInRange(__m128i bytes, char first, char count) {
    const __m128i shifted = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(-128 - first)));
    return _mm_cmplt_epi8(shifted, _mm_set1_epi8(static_cast<char>(-128 + count)));
}

/// False if a byte cannot stand in a name of ASCII characters.
bool NormalizeBlock(__m128i bytes, char* target) {
    const __m128i isUpper = IsInRange(bytes, 'A', 26);
    const __m128i lower = _mm_or_si128(bytes, _mm_and_si128(isUpper, _mm_set1_epi8('a' - 'A')));
    const __m128i isLetter = IsInRange(lower, 'a', 26);
    const __m128i isOther = _mm_or_si128(IsInRange(bytes, '0', 10), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('_')));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), lower);
    return _mm_movemask_epi8(_mm_or_si128(isLetter, isOther)) == 0xffff;
}

/// The same for a name of ASCII characters alone, a block at a time; the target has room for whole blocks. False if the
/// tables have to decide about the name.
bool NormalizeASCII(std::string_view name, char* target) {
    if (name.empty()) return true;
    if (IsDigit(name.front())) return false;
    for (; name.size() >= kBlock; name.remove_prefix(kBlock), target += kBlock)
        if (!NormalizeBlock(_mm_loadu_si128(reinterpret_cast<const __m128i*>(name.data())), target)) return false;
    __m128i rest = _mm_set1_epi8('a');
    std::memcpy(&rest, name.data(), name.size());
    return NormalizeBlock(rest, target);
}

[[noreturn]] void RefuseName(std::string_view name) {
    LogAndThrow(kyrStatusInvalidCIMName, "CIM name '" + std::string(name) + "' is invalid");
}

}  // namespace

TNormalizedName::TNormalizedName(std::string_view name) {
    char* target = fBuffer;
    if (name.size() > kShort) {
        fLong.resize(name.size() + kBlock);
        target = fLong.data();
    }
    const TCharacterTables tables;
    if (!(IsUsual(tables) && NormalizeASCII(name, target)) && !Normalize(name, tables, target)) RefuseName(name);
    fView = std::string_view(target, name.size());
}
