#include "PackageFormats.h"

namespace {

constexpr const char* kLocal = "/var/lib/pacman/local";

std::optional<uint64_t> ParseBytes(std::string_view text) { return ParseNumber<uint64_t>(text); }

constexpr TFieldNames kFieldNames = {ePacman, "NAME", "ARCH", "VERSION",     "PACKAGER", "GROUPS",
                                     "BASE",  "DESC", "SIZE", "INSTALLDATE", ParseBytes};

// Each field is a paragraph: its name as "%NAME%", and its values, of which the first is kept.
TFields ParseSections(std::string_view text) {
    TFields fields;
    while (!text.empty()) {
        const std::vector<std::string_view> lines = Split(TakeParagraph(text), '\n');
        if (lines.size() < 2 || lines[0].size() < 3 || lines[0].front() != '%' || lines[0].back() != '%') continue;
        fields.emplace(lines[0].substr(1, lines[0].size() - 2), lines[1]);
    }
    return fields;
}

}  // namespace

TPackage ParsePacmanDesc(std::string_view text, const std::string& source) {
    return MakePackage(ParseSections(text), kFieldNames, source);
}

// Beside the folders of the packages stands a file with the version of this form.
TPackageSource ReadPacman(const TSystemRoot& root) {
    const TFact<std::vector<std::string>> names = root.List(kLocal);
    if (!names) return WithoutPackages(names.absence, kLocal);
    TPackageSource found;
    for (const std::string& name : *names) {
        const std::string path = kLocal + ('/' + name) + "/desc";
        const TFact<std::string> text = root.ReadFile(path);
        if (!text && text.absence == EAbsence::eNotPresent) continue;
        TPackage package = ParsePacmanDesc(text.ValueOr(""), path);
        if (package.name.empty())
            found.listing = TListing::Missing(text ? EAbsence::eReadError : text.absence, path);
        else
            found.packages.push_back(std::move(package));
    }
    return found;
}
