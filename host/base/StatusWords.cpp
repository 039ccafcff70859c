#include "base/StatusWords.h"

#include <cctype>
#include <string_view>

namespace {

constexpr std::string_view kPrefix = "kyrStatus";

bool IsUpper(char c) { return std::isupper(static_cast<unsigned char>(c)) != 0; }
bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
char ToLower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// "invalid date time" for "InvalidDateTime"; letters that are all capitals stay together.
std::string WordsOf(std::string_view name) {
    std::string words;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool begins = IsUpper(name[i]) && (i > 0 && !IsUpper(name[i - 1]));
        words += begins ? " " : "";
        words += ToLower(name[i]);
    }
    return words;
}

std::string_view StatusAt(std::string_view text, size_t start) {
    size_t end = start;
    while (end < text.size() && IsLetter(text[end])) ++end;
    return text.substr(start, end - start);
}

}  // namespace

std::string WithStatusInWords(const std::string& text) {
    std::string result;
    size_t done = 0;
    for (size_t at = text.find(kPrefix); at != std::string::npos; at = text.find(kPrefix, done)) {
        const std::string_view status = StatusAt(text, at);
        const std::string name(status);
        result.append(text, done, at - done);
        const bool isBare = status.size() > kPrefix.size() && (at == 0 || text[at - 1] != '(');
        result += isBare ? WordsOf(status.substr(kPrefix.size())) + " (" + name + ")" : name;
        done = at + status.size();
    }
    return result.append(text, done);
}
