#include <algorithm>

#include "SoftwareFacts.h"

namespace {

std::optional<uint16_t> ParseState(const std::string& word) {
    if (word == "Live") return eLive;
    if (word == "Loading") return eLoading;
    if (word == "Unloading") return eUnloading;
    return std::nullopt;
}

std::vector<std::string> ParseUsers(std::string_view list) {
    std::vector<std::string> users;
    for (const std::string_view user : Split(list, ','))
        if (user != "-" && user.front() != '[') users.emplace_back(user);  // [permanent]
    return users;
}

// Fields: name size references users state address.
TKernelModule MakeModule(const std::vector<std::string_view>& words, const std::string& source) {
    const auto word = [&](size_t index) { return TFact<std::string>::Of(std::string(words[index]), source); };
    TKernelModule module;
    module.name = std::string(words[0]);
    module.size = word(1).Map([](const std::string& text) { return ParseNumber<uint64_t>(text); });
    module.referenceCount = word(2).Map([](const std::string& text) { return ParseNumber<uint32_t>(text); });
    module.users = ParseUsers(words[3]);
    module.state = word(4).Map(ParseState);
    return module;
}

}  // namespace

std::vector<TKernelModule> ParseModules(std::string_view text, const std::string& source) {
    std::vector<TKernelModule> modules;
    for (const std::string_view line : Lines(text))
        if (const auto words = Split(line, ' '); words.size() >= 5) modules.push_back(MakeModule(words, source));
    std::sort(modules.begin(), modules.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return modules;
}
