#include "Fields.h"

#include <algorithm>

#include "Text.h"

TFields ParseFields(std::string_view paragraph) {
    TFields fields;
    for (const std::string_view line : Lines(paragraph)) {
        const size_t colon = line.find(':');
        if (line.empty() || line[0] == ' ' || line[0] == '\t' || colon == std::string_view::npos) continue;
        fields.emplace(line.substr(0, colon), Trim(line.substr(colon + 1)));
    }
    return fields;
}

TFact<std::string> FieldOf(const TFields& fields, std::string_view name, const std::string& source) {
    const auto found = fields.find(name);
    if (found == fields.end() || found->second.empty())
        return TFact<std::string>::Missing(EAbsence::eNotPresent, source);
    return TFact<std::string>::Of(std::string(found->second), source);
}

std::string_view TakeParagraph(std::string_view& text) {
    const size_t end = std::min(text.find("\n\n"), text.size());
    const std::string_view paragraph = text.substr(0, end);
    text.remove_prefix(std::min(end + 2, text.size()));
    return paragraph;
}
