#include "model/ValueMapTable.h"

#include <utility>

#include "model/NumberText.h"

namespace {
constexpr unsigned long kOpenEnd = ~0ul;
}  // namespace

TValueMapReader::TValueMapReader(std::vector<TEntry>& table, std::string& defaultText)
    : fTable(table), fDefaultText(defaultText) {
    fDefaultText.clear();
}

const char* TValueMapReader::Read(const std::string& numbers, std::string word) {
    if (numbers.size() >= 2 && numbers[0] == '.' && numbers[1] == '.') return ReadDots(numbers, std::move(word));
    const unsigned long number = ReadNumberAndTail(numbers, fFirst, fSecond);
    if (FollowsOpenEnd()) fTable.back().fHigh = number - 1;
    const bool isOpen = fFirst == '.' && fSecond == '.';  // the 5 of "3..5" is never read: the next entry sets the end
    fTable.push_back({number, isOpen ? kOpenEnd : number, std::move(word)});
    fNext = number + 1;
    return nullptr;
}

const char* TValueMapReader::ReadDots(const std::string& numbers, std::string word) {
    if (numbers.size() == 2) {
        if (FollowsOpenEnd()) return " has a .. VALUEMAP entry after another entry that ends with ..!";
        fDefaultText = std::move(word);
        return nullptr;
    }
    if (FollowsOpenEnd()) return " has a ..<value> VALUEMAP entry after another entry that ends with ..!";
    const auto last = ReadNumber<unsigned long>(numbers.substr(2));
    fTable.push_back({fNext, last, std::move(word)});
    fNext = last + 1;
    return nullptr;
}

bool TValueMapReader::FollowsOpenEnd() const { return !fTable.empty() && fTable.back().fHigh == kOpenEnd; }

const std::string* FindWord(const std::vector<TCIMPropertyImpl::TValueMapEntry>& table, unsigned long number) {
    for (const auto& entry : table)
        if (entry.fLow <= number && number <= entry.fHigh) return &entry.fText;
    return nullptr;
}
