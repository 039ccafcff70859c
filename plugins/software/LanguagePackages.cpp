// Packages of programming languages that are installed for the whole system, in the folders of their package managers.
#include <rapidjson/document.h>

#include <algorithm>
#include <tuple>

#include "Fields.h"
#include "SoftwareFacts.h"

namespace {

constexpr const char* kNpmFolders[] = {"/usr/lib/node_modules", "/usr/local/lib/node_modules", "/usr/share/nodejs"};
constexpr const char* kLibraries[] = {"/usr/lib", "/usr/lib64", "/usr/local/lib", "/usr/local/lib64"};
constexpr const char* kPythonFolders[] = {"/dist-packages", "/site-packages"};
/// The fields stand at the front of the file, and a long description behind them.
constexpr size_t kMostMetadata = 32 << 10;
constexpr size_t kMostJson = 1 << 20;

using TPackages = TFound<TLanguagePackage>;

TFact<std::string> Either(const TFact<std::string>& first, const TFact<std::string>& second) {
    return first || !second ? first : second;
}

TLanguagePackage ParsePythonMetadata(const TFact<std::string>& file) {
    std::string_view text = *file;
    const TFields fields = ParseFields(TakeParagraph(text));
    const auto field = [&](const char* name) {
        TFact<std::string> fact = FieldOf(fields, name, file.source);
        if (fact && *fact == "UNKNOWN") fact.value.reset();
        return fact;
    };
    TLanguagePackage package;
    package.format = ePython;
    package.name = field("Name").ValueOr("");
    package.version = field("Version");
    package.summary = field("Summary");
    package.author = Either(field("Author"), Either(field("Author-email"), field("Maintainer")));
    return package;
}

void Add(TLanguagePackage package, const std::string& folder, TPackages& packages) {
    package.folder = folder;
    if (!package.name.empty()) packages.items.push_back(std::move(package));
}

// What an entry of the folder tells of a package: "six-1.16.0.dist-info/METADATA", "six-1.16.0.egg-info/PKG-INFO" or
// the file "six-1.16.0.egg-info".
TFact<std::string> ReadMetadata(const TSystemRoot& root, const std::string& path) {
    if (EndsWith(path, ".dist-info")) return root.ReadFile(path + "/METADATA", kMostMetadata);
    const TFact<std::string> file = root.ReadFile(path + "/PKG-INFO", kMostMetadata);
    return file ? file : root.ReadFile(path, kMostMetadata);
}

void AddPython(const TSystemRoot& root, const std::string& folder, TPackages& packages) {
    const TFact<std::vector<std::string>> names = root.List(folder);
    packages.NoteUnreadable(ListingOf(names));
    for (const std::string& name : names.ValueOr({})) {
        if (!EndsWith(name, ".dist-info") && !EndsWith(name, ".egg-info")) continue;
        const TFact<std::string> file = ReadMetadata(root, folder + '/' + name);
        packages.NoteUnreadable(ListingOf(file));
        if (file) Add(ParsePythonMetadata(file), folder, packages);
    }
}

// A folder that is a link leads to another of them.
void AddPythons(const TSystemRoot& root, TPackages& packages) {
    for (const std::string library : kLibraries) {
        if (root.ReadLink(library)) continue;
        for (const std::string& name : root.Names(library))
            if (name.rfind("python", 0) == 0 && !root.ReadLink(library + '/' + name))
                for (const char* folder : kPythonFolders) AddPython(root, library + '/' + name + folder, packages);
    }
}

TFact<std::string> Member(const rapidjson::Value& object, const char* name, const std::string& source) {
    const auto found = object.FindMember(name);
    if (found == object.MemberEnd() || !found->value.IsString() || found->value.GetStringLength() == 0)
        return TFact<std::string>::Missing(EAbsence::eNotPresent, source);
    return TFact<std::string>::Of({found->value.GetString(), found->value.GetStringLength()}, source);
}

// The author is a text, or an object with a name.
TFact<std::string> AuthorOf(const rapidjson::Value& object, const std::string& source) {
    const auto found = object.FindMember("author");
    if (found != object.MemberEnd() && found->value.IsObject()) return Member(found->value, "name", source);
    return Member(object, "author", source);
}

// Of a damaged file, the folder's name is all that is known.
TLanguagePackage ParseNpmPackage(const TFact<std::string>& file, const std::string& folder) {
    TLanguagePackage package;
    package.format = eNpm;
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(file->data(), file->size());
    if (document.HasParseError() || !document.IsObject()) {
        package.name = folder;
        package.version = package.summary = package.author =
            TFact<std::string>::Missing(EAbsence::eNotSupported, file.source);
        return package;
    }
    package.name = Member(document, "name", file.source).ValueOr(folder);
    package.version = Member(document, "version", file.source);
    package.summary = Member(document, "description", file.source);
    package.author = AuthorOf(document, file.source);
    return package;
}

void AddNpm(const TSystemRoot& root, const std::string& base, const std::string& folder, TPackages& packages) {
    const TFact<std::vector<std::string>> names = root.List(folder);
    packages.NoteUnreadable(ListingOf(names));
    for (const std::string& name : names.ValueOr({})) {
        if (name.front() == '@' && base == folder) AddNpm(root, base, folder + '/' + name, packages);
        if (name.front() == '@' || name.front() == '.') continue;
        const TFact<std::string> file = root.ReadFile(folder + '/' + name + "/package.json", kMostJson);
        packages.NoteUnreadable(ListingOf(file));
        if (file) Add(ParseNpmPackage(file, name), base, packages);
    }
}

auto KeysOf(const TLanguagePackage& package) { return std::tie(package.format, package.name, package.folder); }

// A folder can hold what an update has left of an older version. The managers take the first that they find.
void SortAndUnite(std::vector<TLanguagePackage>& packages) {
    std::stable_sort(packages.begin(), packages.end(),
                     [](const auto& a, const auto& b) { return KeysOf(a) < KeysOf(b); });
    const auto end = std::unique(packages.begin(), packages.end(),
                                 [](const auto& a, const auto& b) { return KeysOf(a) == KeysOf(b); });
    packages.erase(end, packages.end());
}

}  // namespace

TFound<TLanguagePackage> ReadLanguagePackages(const TSystemRoot& root) {
    TPackages packages;
    // Every machine has it, even if there is no such package.
    if (const TListing listing = ListingOf(root.List(kLibraries[0])); !listing) packages.missing.push_back(listing);
    AddPythons(root, packages);
    for (const char* folder : kNpmFolders) AddNpm(root, folder, folder, packages);
    SortAndUnite(packages.items);
    return packages;
}
