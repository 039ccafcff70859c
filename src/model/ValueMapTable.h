#ifndef KYR_MODEL_VALUEMAPTABLE_H
#define KYR_MODEL_VALUEMAPTABLE_H

#include <string>
#include <vector>

#include "model/TCIMPropertyImpl.h"

/// The words for the numbers of a property.
struct TValueWords {
    std::vector<TCIMPropertyImpl::TValueMapEntry> table;
    std::string defaultText;  // for numbers that are not in the table, unless it is empty
};

/// Reads the entries of a ValueMap in order and fills a table with their ranges and texts.
class TValueMapReader {
public:
    using TEntry = TCIMPropertyImpl::TValueMapEntry;

    TValueMapReader(std::vector<TEntry>& table, std::string& defaultText);

    /// Adds the next entry of ValueMap with its text. Returns what is wrong with the map, or null.
    const char* Read(const std::string& numbers, std::string word);

private:
    const char* ReadDots(const std::string& numbers, std::string word);
    bool FollowsOpenEnd() const;

    std::vector<TEntry>& fTable;
    std::string& fDefaultText;
    unsigned long fNext = 0;
    // The two characters that followed the last number that had any. They are kept from entry to entry. Compatibility:
    // after "3.." every plain number is an open range as well; see docs/oddities.md.
    char fFirst = '\0';
    char fSecond = '\0';
};

/// The text for a number, or null.
const std::string* FindWord(const std::vector<TCIMPropertyImpl::TValueMapEntry>& table, unsigned long number);

#endif
