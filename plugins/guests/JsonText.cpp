#include "JsonText.h"

#include <algorithm>
#include <ctime>

#include "Text.h"

rapidjson::Document ParseJson(const std::string& text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
    if (document.HasParseError()) document.SetNull();
    return document;
}

const rapidjson::Value* FindMember(const rapidjson::Value& value, std::initializer_list<const char*> names) {
    const rapidjson::Value* found = &value;
    for (const char* name : names) {
        if (!found->IsObject()) return nullptr;
        const auto member = found->FindMember(name);
        if (member == found->MemberEnd()) return nullptr;
        found = &member->value;
    }
    return found;
}

std::string FindText(const rapidjson::Value& value, std::initializer_list<const char*> names) {
    const rapidjson::Value* const found = FindMember(value, names);
    return found != nullptr && found->IsString() ? found->GetString() : "";
}

TFact<std::string> TextFact(const std::string& text, const std::string& source) {
    using TText = TFact<std::string>;
    return text.empty() ? TText::Missing(EAbsence::eNotPresent, source) : TText::Of(text, source);
}

namespace {

// "+01:00" or "Z"
std::optional<int64_t> ParseOffset(std::string_view text) {
    if (text == "Z") return 0;
    if (text.size() != 6 || (text[0] != '+' && text[0] != '-')) return {};
    const std::optional<int> hours = ParseNumber<int>(text.substr(1, 2)), minutes = ParseNumber<int>(text.substr(4));
    if (!hours || !minutes) return {};
    return (text[0] == '-' ? -60 : 60) * (*hours * 60 + *minutes);
}

}  // namespace

std::optional<int64_t> ParseTime(const std::string& text) {
    struct tm time {};
    const char* const end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    if (end == nullptr) return {};
    std::string_view rest(end);
    if (!rest.empty() && rest[0] == '.') rest.remove_prefix(std::min(rest.find_first_of("Z+-"), rest.size()));
    const std::optional<int64_t> offset = ParseOffset(rest);
    return offset ? std::optional<int64_t>(timegm(&time) - *offset) : std::nullopt;
}
