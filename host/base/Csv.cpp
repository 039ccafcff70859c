#include "base/Csv.h"

#include "base/Text.h"

namespace {

std::string Quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

}  // namespace

std::string CsvLine(const std::vector<std::string>& texts) {
    std::vector<std::string> fields;
    for (const std::string& text : texts) fields.push_back(Quoted(text));
    return Join(fields, ",") + "\r\n";
}
