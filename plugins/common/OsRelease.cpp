#include "OsRelease.h"

#include "OlderRelease.h"

namespace {

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

}  // namespace

TFact<std::string> ReadOsReleaseFile(const TSystemRoot& root) {
    const TFact<std::string> file = NeverEmpty(root.ReadFile("/etc/os-release"));
    if (file || file.absence != EAbsence::eNotPresent) return file;
    const TFact<std::string> other = NeverEmpty(root.ReadFile("/usr/lib/os-release"));
    if (other || other.absence != EAbsence::eNotPresent) return other;
    const TFact<std::string> older = ReadOlderRelease(root);
    return older || IsUnreadable(older) ? older : other;
}

TFact<std::string> FindOsReleaseValue(const TFact<std::string>& file, const std::string& key) {
    TFact<std::string> value = TFact<std::string>::Missing(file.absence, file.source);
    if (!file) return value;
    const std::string start = key + "=";
    for (const std::string_view line : Lines(*file))
        if (line.substr(0, start.size()) == start) value.value = Unquote(Trim(line.substr(start.size())));
    if (value && value->empty()) value.value.reset();
    return value;
}
