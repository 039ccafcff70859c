#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "base/Gzip.h"
#include "base/Text.h"
#include "check/Check.h"
#include "kyr/TOSSpecific.h"
#include "states/LibraryPlace.h"

namespace fs = std::filesystem;

namespace {

bool IsLibrary(const std::string& path) { return EndsWith(path, TOSSpecific::kPluginExtension); }
std::string NameOf(const std::string& path) { return fs::path(path).filename().string(); }

/// What stands beside a file.
struct TFolder {
    explicit TFolder(const std::string& file) {
        std::error_code error;
        const fs::path folder = fs::absolute(file, error).parent_path();
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, error))
            names.insert(entry.path().filename().string());
    }

    bool Has(const std::string& name) const { return names.count(name) != 0; }

    std::set<std::string> names;
};

// For "libfoo.pi.so", "foo.properties.xml".
std::string DocumentOf(const std::string& library) { return DocumentOfPlugin(PluginNameOf(library)); }

// The documents that libraries there want and that are not there.
std::vector<std::string> MissingDocuments(const TFolder& folder) {
    std::vector<std::string> documents;
    for (const std::string& name : folder.names)
        if (IsLibrary(name) && !folder.Has(DocumentOf(name))) documents.push_back(DocumentOf(name));
    return documents;
}

bool HasLibrary(const TFolder& folder, const std::string& document) {
    for (const std::string& name : folder.names)
        if (IsLibrary(name) && DocumentOf(name) == document) return true;
    return false;
}

}  // namespace

bool IsTakenForCompressed(const std::string& path) {
    char start[2] = {};
    std::ifstream file(path, std::ios::binary);
    file.read(start, sizeof start);
    return path.find(".gz") != std::string::npos && file.gcount() > 0 && !IsGzip({start, sizeof start});
}

void CheckDocumentName(const std::string& path, TFindings& findings) {
    const TFolder folder(path);
    const std::string name = NameOf(path);
    const std::vector<std::string> missing = MissingDocuments(folder);
    if (!missing.empty() && !HasLibrary(folder, name))
        findings.Add("D15", {path}, "no library beside it reads a document of the name " + name,
                     "rename it to " + Join(missing, " or "));
}

void CheckNoFile(const std::string& path, TFindings& findings) {
    std::error_code error;
    findings.Add(IsLibraryName(NameOf(path)) ? "L12" : "D17", {path},
                 fs::exists(path, error) ? "it is no file" : "it leads to a file that is not there",
                 "put the file in its place, or remove it");
}

void CheckLibraryName(const std::string& path, TFindings& findings) {
    const TFolder folder(path);
    const std::string wanted = DocumentOf(NameOf(path));
    if (!IsLibrary(path) || folder.Has(wanted)) return;
    std::vector<std::string> others;
    for (const std::string& name : folder.names)
        if (EndsWith(name, ".xml") && !HasLibrary(folder, name)) others.push_back(name);
    const char* const otherwise = folder.Has(wanted + ".gz") ? "unpack the one that ends in .gz" : "put it there";
    findings.Add("D15", {path}, "its document " + wanted + " is not beside it",
                 others.empty() ? otherwise : "rename " + Join(others, " or ") + " to " + wanted);
}
