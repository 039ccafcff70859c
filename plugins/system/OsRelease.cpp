#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

// Removes quotes and backslashes like a shell.
std::string Unquote(std::string_view value) {
    std::string text;
    char quote = '\0';
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == quote) {
            quote = '\0';
        } else if (quote == '\0' && (value[i] == '"' || value[i] == '\'')) {
            quote = value[i];
        } else {
            if (value[i] == '\\' && quote != '\'' && i + 1 < value.size()) ++i;
            text += value[i];
        }
    }
    return text;
}

// The value of the last line "KEY=value"; nothing if it is empty.
TText FindValue(const TText& file, const std::string& key) {
    TText value = TText::Missing(file.absence, file.source);
    if (!file) return value;
    const std::string start = key + "=";
    for (const std::string_view line : Lines(*file))
        if (line.substr(0, start.size()) == start) value.value = Unquote(Trim(line.substr(start.size())));
    if (value && value->empty()) value.value.reset();
    return value;
}

}  // namespace

void ReadOsRelease(const TSystemRoot& root, TSystemFacts& facts) {
    TText file = root.ReadFile("/etc/os-release");
    if (!file && file.absence == EAbsence::eNotPresent) file = root.ReadFile("/usr/lib/os-release");
    facts.osName = FindValue(file, "NAME");
    facts.osPrettyName = FindValue(file, "PRETTY_NAME");
    facts.osId = FindValue(file, "ID");
    facts.osVersion = FindValue(file, "VERSION_ID");
    // Rolling distributions have only a BUILD_ID.
    if (!facts.osVersion) facts.osVersion = FindValue(file, "BUILD_ID");
}
