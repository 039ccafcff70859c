#include "base/NaturalOrder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsWordCharacter(char c) { return IsDigit(c) || IsLetter(c); }
bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// The characters at the start for which that is true.
template <typename TCondition>
std::string_view StartOf(std::string_view text, TCondition condition) {
    return text.substr(0, static_cast<size_t>(std::find_if_not(text.begin(), text.end(), condition) - text.begin()));
}

int CompareSizes(size_t a, size_t b) { return a == b ? 0 : a < b ? -1 : 1; }

int CompareNumbers(std::string_view a, std::string_view b) {
    a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
    b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
    return a.size() == b.size() ? a.compare(b) : CompareSizes(a.size(), b.size());
}

// The kernel counts these disks a to z, then aa.
bool AreDisks(std::string_view a, std::string_view b) {
    for (const std::string_view kind : {"sd", "hd", "vd", "xvd", "dasd"})
        if (a.substr(0, kind.size()) == kind && b.substr(0, kind.size()) == kind)
            return std::max(a.size(), b.size()) <= kind.size() + 3;
    return false;
}

int CompareLetters(std::string_view a, std::string_view b) {
    return a.size() != b.size() && AreDisks(a, b) ? CompareSizes(a.size(), b.size()) : a.compare(b);
}

bool AreAddresses(std::string_view a, std::string_view b) {
    return a.size() == b.size() && StartOf(a, IsHexDigit) == a && StartOf(b, IsHexDigit) == b;
}

int CompareWords(std::string_view a, std::string_view b) {
    if (AreAddresses(a, b)) return a.compare(b);
    while (!a.empty() && !b.empty()) {
        const bool numbers = IsDigit(a.front()) && IsDigit(b.front());
        const std::string_view partA = StartOf(a, IsDigit(a.front()) ? IsDigit : IsLetter);
        const std::string_view partB = StartOf(b, IsDigit(b.front()) ? IsDigit : IsLetter);
        const int order = numbers ? CompareNumbers(partA, partB) : CompareLetters(partA, partB);
        if (order != 0) return order;
        a.remove_prefix(partA.size());
        b.remove_prefix(partB.size());
    }
    return CompareSizes(a.size(), b.size());
}

// How many characters are the same in both at the start, up to the word in which they begin to differ.
size_t LengthOfEqualWords(std::string_view a, std::string_view b) {
    const size_t most = std::min(a.size(), b.size());
    size_t length = 0;
    constexpr size_t kStep = sizeof(uint64_t);
    while (length + kStep <= most && std::memcmp(a.data() + length, b.data() + length, kStep) == 0) length += kStep;
    while (length < most && a[length] == b[length]) ++length;
    while (length > 0 && IsWordCharacter(a[length - 1])) --length;
    return length;
}

int CompareTexts(std::string_view a, std::string_view b) {
    const size_t same = LengthOfEqualWords(a, b);
    a.remove_prefix(same);
    b.remove_prefix(same);
    while (!a.empty() && !b.empty()) {
        const std::string_view wordA = StartOf(a, IsWordCharacter), wordB = StartOf(b, IsWordCharacter);
        const bool areWords = !wordA.empty() && !wordB.empty();
        const int order = areWords ? CompareWords(wordA, wordB) : a.substr(0, 1).compare(b.substr(0, 1));
        if (order != 0) return order;
        a.remove_prefix(areWords ? wordA.size() : 1);
        b.remove_prefix(areWords ? wordB.size() : 1);
    }
    return CompareSizes(a.size(), b.size());
}

}  // namespace

// Texts that count the same, such as "cpu1" and "cpu01", still need an order.
bool IsNaturallyLess(std::string_view a, std::string_view b) {
    const int order = CompareTexts(a, b);
    return order == 0 ? a < b : order < 0;
}
