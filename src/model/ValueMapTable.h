#ifndef KYR_MODEL_VALUEMAPTABLE_H
#define KYR_MODEL_VALUEMAPTABLE_H

#include <string>
#include <vector>

#include "model/TCIMPropertyImpl.h"

/// Reads the texts of a ValueMap one after the other, and fills a table with what they say.
class TValueMapReader {
public:
    using TEntry = TCIMPropertyImpl::TValueMapEntry;

    TValueMapReader(std::vector<TEntry>& table, std::string& defaultText);

    /// Takes the next text of the map and its word. Null, or what is wrong with the map.
    const char* Read(const std::string& numbers, std::string word);

private:
    const char* ReadDots(const std::string& numbers, std::string word);
    bool FollowsOpenEnd() const;

    std::vector<TEntry>& fTable;
    std::string& fDefaultText;
    unsigned long fNext = 0;
    // The two characters behind the last number that had any. sic: once they are dots, every plain number after them
    // is open-ended too.
    char fFirst = '\0';
    char fSecond = '\0';
};

/// The word for a number, or null.
const std::string* FindWord(const std::vector<TCIMPropertyImpl::TValueMapEntry>& table, unsigned long number);

#endif
