#include "DebianVersion.h"

#include <algorithm>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// A tilde sorts before the end, which sorts before letters, which sort before all else.
int RankOf(std::string_view text) {
    if (text.empty() || IsDigit(text[0])) return 0;
    if (text[0] == '~') return -1;
    const auto code = static_cast<unsigned char>(text[0]);
    return IsLetter(text[0]) ? code : code + 256;
}

std::string_view TakeNumber(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
    const std::string_view number = text.substr(0, static_cast<size_t>(end - text.begin()));
    text.remove_prefix(number.size());
    return number;
}

// Parts without digits and numbers take turns. Negative if the first is older, 0 if they are equal.
int Compare(std::string_view a, std::string_view b) {
    while (!a.empty() || !b.empty()) {
        while ((!a.empty() && !IsDigit(a[0])) || (!b.empty() && !IsDigit(b[0]))) {
            if (const int difference = RankOf(a) - RankOf(b); difference != 0) return difference;
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
        const std::string_view first = TakeNumber(a), second = TakeNumber(b);
        if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
        if (const int difference = first.compare(second); difference != 0) return difference;
    }
    return 0;
}

/// "1:2.3-4" is epoch 1, version 2.3 and revision 4.
struct TParts {
    explicit TParts(std::string_view text) {
        if (const size_t colon = text.find(':'); colon != std::string_view::npos) {
            epoch = text.substr(0, colon);
            text.remove_prefix(colon + 1);
        }
        const size_t hyphen = text.rfind('-');
        version = text.substr(0, hyphen);
        if (hyphen != std::string_view::npos) revision = text.substr(hyphen + 1);
    }
    std::string_view epoch, version, revision;
};

}  // namespace

bool IsOlderVersion(std::string_view a, std::string_view b) {
    const TParts first(a), second(b);
    if (const int difference = Compare(first.epoch, second.epoch); difference != 0) return difference < 0;
    if (const int difference = Compare(first.version, second.version); difference != 0) return difference < 0;
    return Compare(first.revision, second.revision) < 0;
}
