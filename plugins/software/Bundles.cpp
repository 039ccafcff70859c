// Applications that bring what they need along: flatpak and snap.
#include <algorithm>

#include "PackageFormats.h"

namespace {

constexpr const char* kFlatpaks = "/var/lib/flatpak";
/// Where snaps are mounted; which of them depends on the distribution.
constexpr const char* kMounted[] = {"/snap", "/var/lib/snapd/snap"};
constexpr const char* kSnapFiles = "/var/lib/snapd/snaps";

TPackage MakeBundle(EPackageFormat format, const std::string& name, const std::string& id, const std::string& source) {
    TPackage package;
    package.format = format;
    package.name = name;
    package.id = id;
    package.status = TFact<uint16_t>::Of(eInstalled, source);
    return package;
}

TFact<std::string> NotPresent(const std::string& source) {
    return TFact<std::string>::Missing(EAbsence::eNotPresent, source);
}

// The file is a dictionary in the binary form of GVariant, in which a text follows its key at the next multiple of
// eight bytes and ends in a NUL.
TFact<std::string> FindDeployed(const TFact<std::string>& file, std::string_view key) {
    if (!file) return NotPresent(file.source);
    const std::string_view bytes = *file;
    const std::string ended = std::string(key) + '\0';
    const size_t at = bytes.find(ended);
    if (at == std::string_view::npos) return NotPresent(file.source);
    const size_t start = std::min(bytes.find_first_not_of('\0', at + key.size()), bytes.size());
    const size_t end = bytes.find('\0', start);
    if (start > at + key.size() + 8 || end == std::string_view::npos || end == start) return NotPresent(file.source);
    return TFact<std::string>::Of(std::string(bytes.substr(start, end - start)), file.source);
}

// Translations and debugging symbols belong to what has the name without the ending.
bool IsPartOfOther(std::string_view name) {
    return EndsWith(name, ".Locale") || EndsWith(name, ".Debug") || EndsWith(name, ".Sources");
}

// The folder of a kind has one for each name, architecture and branch; "active" is what is in use.
void AddFlatpak(const TSystemRoot& root, const std::string& folder, const std::string& name, const std::string& id,
                std::vector<TPackage>& packages) {
    const std::string source = folder + "/active/deploy";
    if (!root.ReadLink(folder + "/active")) return;
    const TFact<std::string> deployed = root.ReadFile(source, 1 << 20);
    TPackage package = MakeBundle(eFlatpak, name, id, folder);
    package.version = FindDeployed(deployed, "appdata-version");
    package.summary = FindDeployed(deployed, "appdata-summary");
    package.maintainer = NotPresent(source);
    packages.push_back(std::move(package));
}

void AddFlatpaks(const TSystemRoot& root, const std::string& kind, std::vector<TPackage>& packages) {
    for (const std::string& name : root.Names(kind))
        for (const std::string& architecture : root.Names(kind + '/' + name)) {
            const std::string folder = kind + '/' + name + '/' + architecture;
            if (IsPartOfOther(name) || architecture == "current") continue;
            for (const std::string& branch : root.Names(folder))
                AddFlatpak(root, folder + '/' + branch, name, architecture + '/' + branch, packages);
        }
}

// A list of one line, "[amd64]", or of several, "- amd64"; the first of them.
std::string ParseArchitecture(std::string_view text) {
    constexpr std::string_view kKey = "\narchitectures:";
    const size_t at = text.find(kKey);
    if (at == std::string_view::npos) return "all";
    text.remove_prefix(at + kKey.size());
    text.remove_prefix(std::min(text.find_first_not_of(" \n-["), text.size()));
    return std::string(text.substr(0, text.find_first_of(" \n,]")));
}

// A text may stand in quotes of either kind; an apostrophe within single ones is doubled.
std::string Unquoted(const std::string& text) {
    const bool isQuoted = text.size() >= 2 && text.front() == text.back() && (text[0] == '\'' || text[0] == '"');
    std::string plain = isQuoted ? text.substr(1, text.size() - 2) : text;
    if (isQuoted && text[0] == '\'')
        for (size_t at = plain.find("''"); at != std::string::npos; at = plain.find("''", at + 1)) plain.erase(at, 1);
    return plain;
}

TPackage ParseSnap(const TFact<std::string>& file, const std::string& name) {
    const std::string text = file.ValueOr("");
    const TFields fields = ParseFields(text);
    const auto field = [&](const char* key) {
        TFact<std::string> fact = file ? FieldOf(fields, key, file.source) : file;
        if (fact) fact.value = Unquoted(*fact);
        return fact;
    };
    TPackage package = MakeBundle(eSnap, name, ParseArchitecture(text), file.source);
    package.version = field("version");
    package.summary = field("summary");
    package.maintainer = NotPresent(file.source);
    return package;
}

// A snap file is "core22_1380.snap". Where the snaps are not mounted, their names are all that is known.
void AddUnmounted(const TSystemRoot& root, std::vector<TPackage>& packages) {
    for (const std::string& file : root.Names(kSnapFiles)) {
        const std::string name = file.substr(0, file.find('_'));
        if (!EndsWith(file, ".snap") || (!packages.empty() && packages.back().name == name)) continue;
        TPackage package = MakeBundle(eSnap, name, "", std::string(kSnapFiles) + '/' + file);
        package.version = package.summary = package.maintainer = NotPresent(kSnapFiles);
        packages.push_back(std::move(package));
    }
}

}  // namespace

TPackageSource ReadFlatpak(const TSystemRoot& root) {
    const TFact<std::vector<std::string>> kinds = root.List(kFlatpaks);
    if (!kinds) return WithoutPackages(kinds.absence, kFlatpaks);
    TPackageSource found;
    for (const std::string kind : {"/app", "/runtime"}) {
        const auto names = root.List(kFlatpaks + kind);
        if (IsUnreadable(names)) found.listing = ListingOf(names);
        AddFlatpaks(root, kFlatpaks + kind, found.packages);
    }
    return found;
}

TPackageSource ReadSnap(const TSystemRoot& root) {
    TPackageSource found;
    for (const std::string folder : kMounted) {
        if (root.ReadLink(folder)) continue;  // to the other one
        for (const std::string& name : root.Names(folder)) {
            if (!root.ReadLink(folder + '/' + name + "/current")) continue;
            const TFact<std::string> text = root.ReadFile(folder + '/' + name + "/current/meta/snap.yaml");
            found.packages.push_back(ParseSnap(text, name));
        }
    }
    const TFact<std::vector<std::string>> files = root.List(kSnapFiles);
    if (found.packages.empty()) AddUnmounted(root, found.packages);
    if (found.packages.empty() && IsUnreadable(files)) found.listing = ListingOf(files);
    return found;
}
