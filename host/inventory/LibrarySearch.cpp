#include "inventory/LibrarySearch.h"

#include <elf.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "base/ExitStatus.h"
#include "base/Output.h"
#include "base/Text.h"
#include "kyr/TOSSpecific.h"
#include "states/LibraryPlace.h"

namespace fs = std::filesystem;

namespace {

bool IsBuiltIn(const std::string& name) {
    return std::string("," KYRCORE_PLUGINS ",").find("," + name + ",") != std::string::npos;
}
std::string FileName(const fs::path& path) { return path.filename().string(); }

// For "a.properties.xml" the library "liba.pi.so" beside it.
fs::path LibraryOf(const fs::path& document) {
    const std::string name = FileName(document);
    const std::string stem = name.substr(0, name.size() - TOSSpecific::kSpecificationExtension.size());
    return document.parent_path() / LibraryOfPlugin(stem);
}

// Opening a pipe with the name of a library would block. A link that leads nowhere stands for a library: loading it
// tells what is wrong.
bool IsFileOrBrokenLink(const fs::directory_entry& entry) {
    std::error_code ignored;
    return entry.is_regular_file(ignored) || (entry.is_symlink(ignored) && !entry.exists(ignored));
}

bool IsFolder(const fs::directory_entry& entry) {
    std::error_code ignored;
    return entry.is_directory(ignored);
}

using TEntries = std::vector<fs::directory_entry>;

TEntries EntriesOf(const fs::path& folder, std::error_code& error) {
    TEntries entries;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) entries.push_back(entry);
    return entries;
}

/// The search of one plugin folder.
class TFolderSearch {
public:
    explicit TFolderSearch(const TPluginFolder& folder) : fFolder(folder) {}

    std::list<TPluginLibrary> Run() {
        std::error_code error;
        const TEntries entries = EntriesOf(fFolder.path, error);
        if (error) RefuseFolder(error);
        for (const fs::directory_entry& entry : entries)
            if (IsFolder(entry)) OpenFolder(entry);
        for (const TEntries& files : fContents) AddLibraries(files);
        AddElsewhere(entries, EMisplacement::eInPluginFolder);
        for (const TEntries& files : fContents) AddBelow(files);
        AddMissingLibraries();
        fLibraries.sort([](const TPluginLibrary& a, const TPluginLibrary& b) { return a.path < b.path; });
        return std::move(fLibraries);
    }

private:
    // The default folders need not be there.
    void RefuseFolder(const std::error_code& error) const {
        const std::string text = "cannot read the plugin folder '" + fFolder.path + "': " + error.message();
        if (fFolder.isRequired) throw TCommandError(eExitNothing, text);
        if (error != std::errc::no_such_file_or_directory) PrintDiagnostic(text);
    }

    void OpenFolder(const fs::path& folder) {
        std::error_code error;
        fContents.push_back(EntriesOf(folder, error));
        if (error) Refuse(folder, ReasonFor(EReason::eFolderUnreadable, error.message()));
    }

    TPluginLibrary& Add(const fs::path& path) {
        fKnown.insert(path);
        TPluginLibrary& library = fLibraries.emplace_back();
        library.folder = fFolder.path;
        library.isOwn = fFolder.isOwn;
        library.path = "./" + path.lexically_relative(fFolder.path).string();
        library.isBuiltIn = IsBuiltIn(library.Name());
        return library;
    }

    void Refuse(const fs::path& path, const TReason& reason) { Add(path).notLoaded = {eRefused, reason}; }

    // It would be found at the right path, with its document beside it.
    void RefusePlace(const fs::path& path, const std::string& right, EMisplacement misplacement) {
        Refuse(path, Misplaced(misplacement, right));
        fKnown.insert(right);
    }

    void AddLibraries(const TEntries& files) {
        const size_t before = fLibraries.size();
        for (const fs::directory_entry& file : files)
            if (IsLibraryName(FileName(file)) && IsFileOrBrokenLink(file)) AddLibrary(file);
        if (fLibraries.size() != before) return;
        for (const fs::directory_entry& file : files)
            if (EndsWith(FileName(file), ".so") && IsFileOrBrokenLink(file))
                RefusePlace(file, RightName(file.path().string()), EMisplacement::eOtherEnding);
    }

    // The core finds the document by taking away the first "lib" of the library's path. Where that is not the one in
    // front of the file's name, there may be a document all the same.
    void AddLibrary(const fs::path& path) {
        const bool isFolderWrong = FileName(path.parent_path()).find("lib") != std::string::npos;
        std::error_code ignored;
        if (const std::string document = Add(path).FullDocumentPath();
            !document.empty() && fs::exists(document, ignored))
            return;
        if (!isFolderWrong && StartsWith(FileName(path), "lib")) return;
        fLibraries.pop_back();
        if (isFolderWrong)
            RefusePlace(path, RightPath(path.string(), fFolder.path), EMisplacement::eLibInFolder);
        else
            RefusePlace(path, RightName(path.string()), EMisplacement::eNoLib);
    }

    // Libraries that lie where none is looked for, unless they are copies of one that is in its place.
    void AddElsewhere(const TEntries& files, EMisplacement misplacement) {
        const auto isInPlace = [this](const std::string& name) {
            return std::any_of(fLibraries.begin(), fLibraries.end(),
                               [&](const TPluginLibrary& library) { return library.Name() == name; });
        };
        for (const fs::directory_entry& file : files)
            if (EndsWith(FileName(file), TOSSpecific::kPluginExtension) && IsFileOrBrokenLink(file) &&
                !isInPlace(PluginNameOf(FileName(file))))
                RefusePlace(file, RightPath(file.path().string(), fFolder.path), misplacement);
    }

    void AddBelow(const TEntries& files) {
        std::error_code ignored;
        for (const fs::directory_entry& file : files)
            if (IsFolder(file) && !file.is_symlink(ignored))
                AddElsewhere(EntriesOf(file, ignored), EMisplacement::eTooDeep);
    }

    // Each document that is no library's belongs to a library beside it that has none. Without one it is added as a
    // library that cannot be opened: it was forgotten, or has another name.
    void AddMissingLibraries() {
        std::set<std::string> documents;
        for (const TPluginLibrary& library : fLibraries) documents.insert(library.FullDocumentPath());
        for (const TEntries& files : fContents)
            for (const fs::directory_entry& file : files)
                if (EndsWith(FileName(file), TOSSpecific::kSpecificationExtension) &&
                    documents.count(file.path().string()) == 0 && fKnown.count(LibraryOf(file)) == 0)
                    AddStray(file);
    }

    void AddStray(const fs::path& document) {
        if (TPluginLibrary* const library = FindWithoutDocument(document.parent_path()))
            library->strayDocument = FileName(document);
        else
            Refuse(LibraryOf(document), ReasonFor(EReason::eCannotOpen, "only its document is there"));
    }

    // A library of that folder that has no document, and no other one of another name either. Null if there is none.
    TPluginLibrary* FindWithoutDocument(const fs::path& folder) {
        std::error_code ignored;
        for (TPluginLibrary& library : fLibraries)
            if (!library.notLoaded.reason && library.strayDocument.empty() &&
                fs::path(library.FullPath()).parent_path() == folder &&
                !fs::exists(library.FullDocumentPath(), ignored))
                return &library;
        return nullptr;
    }

    const TPluginFolder& fFolder;
    std::vector<TEntries> fContents;  // of the folders in it
    std::list<TPluginLibrary> fLibraries;
    std::set<fs::path> fKnown;  // the paths of the libraries, and those where misplaced ones belong
};

// Notes that the one library is taken and the other is not, since their plugins have the same name.
void TellTaken(TPluginLibrary& taken, const TPluginLibrary& other) {
    const std::string text = taken.FullPath() + " is taken, and not " + other.FullPath();
    PrintDiagnostic("plugin " + taken.Name() + ": " + text);
    taken.report.messages.push_back({"", kyrLogWarning, text, true});
}

// Whether it can take the place of another one: what is no library, or has no document, would take its classes away.
bool CanBePlugin(const TPluginLibrary& library) {
    if (library.notLoaded.reason) return false;
    std::error_code ignored;
    char start[SELFMAG] = {};
    std::ifstream(library.FullPath(), std::ios::binary).read(start, sizeof start);
    return std::memcmp(start, ELFMAG, SELFMAG) == 0 && fs::exists(library.FullDocumentPath(), ignored);
}

// Adds the libraries of a folder to those of the folders before it.
void AddFolder(std::list<TPluginLibrary> found, std::list<TPluginLibrary>& libraries) {
    const auto isTaken = [&libraries](const TPluginLibrary& library) {
        const auto other = std::find_if(libraries.begin(), libraries.end(), [&](const TPluginLibrary& before) {
            return before.Name() == library.Name() && CanBePlugin(before);
        });
        if (other == libraries.end()) return false;
        TellTaken(*other, library);
        return true;
    };
    found.remove_if(isTaken);
    libraries.splice(libraries.end(), found);
}

// The folder, or what of the library others than the superuser can write.
std::string FindWritable(const TPluginLibrary& library) {
    const fs::path path = library.FullPath();
    for (const std::string& each : {path.parent_path().string(), path.string(), library.FullDocumentPath()})
        if (const std::string found = FindWritableByOthers(each); !found.empty()) return found;
    return "";
}

}  // namespace

std::list<TPluginLibrary> FindLibraries(const std::vector<TPluginFolder>& folders) {
    std::list<TPluginLibrary> libraries;
    for (const TPluginFolder& folder : folders) AddFolder(TFolderSearch(folder).Run(), libraries);
    return libraries;
}

void TellWritableFolders(const std::list<TPluginLibrary>& libraries) {
    if (geteuid() != 0) return;
    std::set<std::string> told;
    for (const TPluginLibrary& library : libraries) {
        const std::string found = library.isOwn || library.notLoaded.reason ? "" : FindWritable(library);
        if (!found.empty() && told.insert(found).second)
            PrintDiagnostic("others than the superuser can write '" + found + "', from which " + library.FullPath() +
                            " runs as the superuser");
    }
}
