#include "PackageFormats.h"

namespace {

constexpr TFieldNames kFieldNames = {eDeb,     "Package",     "Architecture",   "Version", "Maintainer",  "Section",
                                     "Source", "Description", "Installed-Size", nullptr,   ParseKilobytes};

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

// The field Status, "want flag status".
std::optional<uint16_t> ParseStatus(const std::string& text) {
    const std::vector<std::string_view> words = Split(text, ' ');
    return words.size() == 3 ? StatusNamed(words[2]) : std::nullopt;
}

}  // namespace

std::vector<TPackage> ParseDpkgStatus(std::string_view text, const std::string& source) {
    std::vector<TPackage> packages;
    while (!text.empty()) {
        const TFields fields = ParseFields(TakeParagraph(text));
        TPackage package = MakePackage(fields, kFieldNames, source);
        if (package.name.empty()) continue;
        const TFact<std::string> status = FieldOf(fields, "Status", source);
        package.status = status.Map(ParseStatus);
        package.isHeld = status && status->rfind("hold ", 0) == 0;
        package.essential = TFact<bool>::Of(FieldOf(fields, "Essential", source).ValueOr("") == "yes", "");
        packages.push_back(std::move(package));
    }
    return packages;
}

TPackageSource ReadDpkg(const TSystemRoot& root) {
    return ReadPackageFile(root, "/var/lib/dpkg/status", ParseDpkgStatus);
}
