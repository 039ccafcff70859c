#include <algorithm>
#include <map>

#include "SoftwareFacts.h"

namespace {

using TFields = std::map<std::string_view, std::string_view>;

constexpr std::pair<std::string_view, EPackageStatus> kStatuses[] = {
    {"not-installed", eNotInstalled},       {"config-files", eConfigFiles},
    {"half-installed", eHalfInstalled},     {"unpacked", eUnpacked},
    {"half-configured", eHalfConfigured},   {"triggers-awaited", eTriggersAwaited},
    {"triggers-pending", eTriggersPending}, {"installed", eInstalled},
};

std::optional<uint16_t> StatusNamed(std::string_view word) {
    for (const auto& [name, status] : kStatuses)
        if (name == word) return status;
    return std::nullopt;
}

// Only the first line of a field with several lines is kept.
TFields ParseParagraph(std::string_view paragraph) {
    TFields fields;
    for (const std::string_view line : Lines(paragraph)) {
        const size_t colon = line.find(':');
        if (line.empty() || line[0] == ' ' || line[0] == '\t' || colon == std::string_view::npos) continue;
        fields.emplace(line.substr(0, colon), Trim(line.substr(colon + 1)));
    }
    return fields;
}

TFact<std::string> Field(const TFields& fields, std::string_view name, const std::string& source) {
    const auto found = fields.find(name);
    if (found == fields.end() || found->second.empty())
        return TFact<std::string>::Missing(EAbsence::eNotPresent, source);
    return TFact<std::string>::Of(std::string(found->second), source);
}

// The field Status, "want flag status".
std::optional<uint16_t> ParseStatus(const std::string& text) {
    const std::vector<std::string_view> words = Split(text, ' ');
    return words.size() == 3 ? StatusNamed(words[2]) : std::nullopt;
}

TPackage MakePackage(const TFields& fields, const std::string& source) {
    TPackage package;
    package.name = Field(fields, "Package", source).ValueOr("");
    package.architecture = Field(fields, "Architecture", source).ValueOr("");
    package.version = Field(fields, "Version", source);
    package.maintainer = Field(fields, "Maintainer", source);
    package.section = Field(fields, "Section", source);
    package.source = Field(fields, "Source", source);
    package.summary = Field(fields, "Description", source);
    package.installedSize =
        Field(fields, "Installed-Size", source).Map([](const std::string& text) { return ParseKilobytes(text); });
    package.status = Field(fields, "Status", source).Map(ParseStatus);
    package.essential = Field(fields, "Essential", source).ValueOr("") == "yes";
    return package;
}

}  // namespace

std::vector<TPackage> ParsePackages(std::string_view text, const std::string& source) {
    std::vector<TPackage> packages;
    while (!text.empty()) {
        const size_t end = std::min(text.find("\n\n"), text.size());
        TPackage package = MakePackage(ParseParagraph(text.substr(0, end)), source);
        if (!package.name.empty()) packages.push_back(std::move(package));
        text.remove_prefix(std::min(end + 2, text.size()));
    }
    std::sort(packages.begin(), packages.end(), [](const TPackage& a, const TPackage& b) {
        return std::tie(a.name, a.architecture) < std::tie(b.name, b.architecture);
    });
    return packages;
}
