#include "inventory/Libraries.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>

#include "Exit.h"
#include "command/Options.h"
#include "inventory/DocumentProbe.h"
#include "inventory/Log.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"

namespace fs = std::filesystem;

namespace {

bool IsLibraryName(const std::string& name) { return name.find(TOSSpecific::kPluginExtension) != std::string::npos; }

TLibrary LibraryAt(const fs::path& path) {
    TLibrary library;
    library.path = path.string();
    return library;
}

// A pipe in place of a library must not hold us up.
void AddLibraries(const fs::path& folder, std::list<TLibrary>& libraries) {
    std::error_code error, ignored;
    for (const fs::directory_entry& file : fs::directory_iterator(folder, error))
        if (IsLibraryName(file.path().filename().string()) && file.is_regular_file(ignored))
            libraries.push_back(LibraryAt(file.path()));
    if (!error) return;
    libraries.push_back(LibraryAt(folder));
    libraries.back().hindrance = {eRefused, "cannot read its folder: " + error.message()};
}

// Where there is none, loading the plugin will tell.
bool IsNoFile(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error) && !fs::is_regular_file(path, error);
}

// One that is never read to its end must leave time for others before the deadline.
double SecondsForOne(const TSessionOptions& options) {
    return options.deadline > 0 ? std::min(options.timeout, options.deadline / 10) : options.timeout;
}

// Why each of the documents must not be read, if there is a reason.
std::map<std::string, std::string> FindHarm(const std::list<TLibrary>& libraries, TContainer& container,
                                            const TSessionOptions& options) {
    std::map<std::string, std::string> harms;
    std::vector<std::string> documents;
    for (const TLibrary& library : libraries) {
        const std::string document = DocumentOf(library);
        if (IsNoFile(document))
            harms[document] = "is no file";
        else if (fs::exists(document))
            documents.push_back(document);
    }
    const auto read = [&](const std::string& path) { container.PopulateContainerFromFile(path); };
    const std::vector<std::string> found = ProbeDocuments(documents, read, SecondsForOne(options), options.Latest());
    for (size_t i = 0; i < documents.size(); ++i)
        if (!found[i].empty()) harms[documents[i]] = found[i];
    return harms;
}

// What the core logged while it read a document.
std::vector<std::string> RepeatedClasses() {
    const std::string start = "TContainer: class ", end = " already defined";
    std::vector<std::string> names;
    for (const TLogLine& line : TLog::Take())
        if (line.text.size() > start.size() + end.size() && line.text.compare(0, start.size(), start) == 0)
            names.push_back(line.text.substr(start.size(), line.text.size() - start.size() - end.size()));
    return names;
}

bool HasFailedToLoad(const TPluginReport& report) { return report.FindOwner() == nullptr || !report.refusal.empty(); }

std::vector<TCIMClass*> Read(const std::string& document, TContainer& container) {
    try {
        return container.PopulateContainerFromFile(document);
    } catch (const TKYRException&) {
        return {};  // loading the plugin meets it again, and tells
    }
}

}  // namespace

std::list<TLibrary> FindLibraries() {
    std::list<TLibrary> libraries;
    std::error_code error, ignored;
    for (const fs::directory_entry& folder : fs::directory_iterator(".", error))
        if (folder.is_directory(ignored)) AddLibraries(folder.path(), libraries);
    if (error) throw TCommandError(eExitNothing, "cannot read the plugin folder: " + error.message());
    libraries.sort([](const TLibrary& a, const TLibrary& b) { return a.path < b.path; });
    return libraries;
}

void ReadDocuments(std::list<TLibrary>& libraries, TContainer& container, TContainer& schema,
                   const TSessionOptions& options) {
    const std::map<std::string, std::string> harms = FindHarm(libraries, container, options);
    for (TLibrary& library : libraries) {
        const std::string document = DocumentOf(library);
        if (document.empty() || !library.hindrance.reason.empty()) continue;
        if (const auto harm = harms.find(document); harm != harms.end()) {
            library.hindrance = {eRefused, "its document " + document + " " + harm->second};
            continue;
        }
        library.classes = Read(document, container);
        library.repeated = RepeatedClasses();
        Read(document, schema);
        TLog::Take();  // loading the plugin says it all again
    }
}

void ClaimClasses(TLibrary& library, std::list<TLibrary>& libraries) {
    const auto isRepeated = [&](const TCIMClass* cls) {
        return std::find(library.repeated.begin(), library.repeated.end(), cls->GetName()) != library.repeated.end();
    };
    for (TLibrary& other : libraries) {
        if (&other == &library || !HasFailedToLoad(other.report)) continue;
        const auto lost = std::stable_partition(other.classes.begin(), other.classes.end(), std::not_fn(isRepeated));
        library.classes.insert(library.classes.end(), lost, other.classes.end());
        other.classes.erase(lost, other.classes.end());
    }
}

std::string DocumentOf(const TLibrary& library) {
    try {
        return TOSSpecific::BuildSpecificationPath(library.path);
    } catch (const TKYRException&) {
        return "";
    }
}
