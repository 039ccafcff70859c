#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "check/Check.h"
#include "check/ElfFile.h"
#include "check/Placement.h"
#include "kyr/TOSSpecific.h"
#include "states/LibraryPlace.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostNamed = 5;
constexpr size_t kMostLibraries = 200;  // that are looked into for symbols

// "a, b and 3 more"
std::string NamesText(std::vector<std::string> names) {
    const size_t more = names.size() > kMostNamed ? names.size() - kMostNamed : 0;
    names.resize(names.size() - more);
    return VisibleText(Join(names)) + (more == 0 ? "" : " and " + std::to_string(more) + " more");
}

// Parts of templates of the C++ library, which compilers export from every library that uses them.
bool IsOfStandardLibrary(const std::string& symbol) {
    const size_t start = symbol.find_first_of("S9", 2);
    const bool isMangled = StartsWith(symbol, "_Z") && start != std::string::npos;
    const auto isOfPrefix = [](char c) { return std::string_view("NKZTVISGR").find(c) != std::string_view::npos; };
    return isMangled && std::all_of(symbol.begin() + 2, symbol.begin() + static_cast<long>(start), isOfPrefix) &&
           (StartsWith(symbol.substr(start), "St") || StartsWith(symbol.substr(start), "9__gnu_cxx"));
}

// What the linker adds to libraries.
bool IsOfLinker(const std::string& symbol) {
    constexpr std::array kNames = {"_init", "_fini", "_edata", "_end", "__bss_start"};
    return std::find(kNames.begin(), kNames.end(), symbol) != kNames.end();
}

// The folders of the libraries that this process has loaded, in which others are found, too.
std::set<std::string> LibraryFolders() {
    std::set<std::string> folders = {"/lib", "/usr/lib", "/lib64", "/usr/lib64", "/usr/local/lib"};
    const auto add = [](dl_phdr_info* info, size_t, void* set) {
        const std::string path = info->dlpi_name;
        if (const size_t slash = path.rfind('/'); slash != std::string::npos)
            static_cast<std::set<std::string>*>(set)->insert(path.substr(0, slash));
        return 0;
    };
    dl_iterate_phdr(add, &folders);
    return folders;
}

/// The symbols that a library finds in those that it needs, and in the program that loads it.
class TProviders {
public:
    explicit TProviders(const std::string& library, const TElfFile& file) {
        AddNeeded(fs::path(library).parent_path().string(), file);
    }

    bool Provide(const std::string& symbol) const {
        return fSymbols.count(symbol) != 0 || dlsym(RTLD_DEFAULT, symbol.c_str()) != nullptr;
    }
    const std::vector<std::string>& Missing() const { return fMissing; }

private:
    void AddNeeded(const std::string& origin, const TElfFile& file) {
        for (const std::string& name : file.needed) {
            if (fSeen.size() >= kMostLibraries || !fSeen.insert(name).second) continue;
            const std::string path = Find(name, origin, file.runPaths);
            if (path.empty())
                fMissing.push_back(name);
            else
                AddLibrary(path);
        }
    }

    void AddLibrary(const std::string& path) {
        const TElfFile file = ReadElfFile(path);
        for (const TElfFile::TSymbol& symbol : file.symbols)
            if (symbol.isDefined) fSymbols.insert(symbol.name);
        AddNeeded(fs::path(path).parent_path().string(), file);
    }

    std::string Find(const std::string& name, const std::string& origin, const std::vector<std::string>& runPaths) {
        std::vector<std::string> folders;
        for (std::string path : runPaths) {
            if (const size_t at = path.find("$ORIGIN"); at != std::string::npos) path.replace(at, 7, origin);
            folders.push_back(path);
        }
        folders.insert(folders.end(), fFolders.begin(), fFolders.end());
        std::error_code ignored;
        for (const std::string& folder : folders)
            if (const fs::path path = fs::path(folder) / name; fs::is_regular_file(path, ignored)) return path.string();
        return "";
    }

    const std::set<std::string> fFolders = LibraryFolders();
    std::set<std::string> fSeen, fSymbols;
    std::vector<std::string> fMissing;
};

bool IsCopy(const std::string& path) {
    return IsLibraryName(fs::path(path).filename().string()) && !EndsWith(path, TOSSpecific::kPluginExtension);
}

class TLibraryCheck {
public:
    TLibraryCheck(const std::string& path, TFindings& findings)
        : fPath(path), fFindings(findings), fFile(ReadElfFile(path)) {}

    void Check() {
        CheckNames();
        CheckRights();
        if (!fFile.fault.empty())
            return Add("L12", "the file is no library that can be loaded: " + fFile.fault,
                       "build it as a shared library for this machine");
        CheckExports();
        CheckUndefined();
        CheckRegistration();
        CheckHardening();
    }

private:
    void Add(const char* rule, const std::string& text, const std::string& remedy) {
        fFindings.Add(rule, {fPath}, text, remedy);
    }

    void CheckNames() {
        for (const TMisplacement& found : FindMisnaming(fPath)) AddMisplacement(found, fFindings);
        if (IsCopy(fPath))
            Add("L05", "the file is loaded as a plugin, since its name has " + TOSSpecific::kPluginExtension + " in it",
                "move copies out of the plugin folder");
    }

    void CheckRights() {
        for (const std::string& path : {fPath, fs::absolute(fPath).parent_path().string()}) {
            struct stat status {};
            if (stat(path.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0)
                Add("L07", "everybody may write '" + path + "', and so run code in the processes of others",
                    "chmod o-w " + path);
        }
    }

    void CheckExports() {
        std::vector<std::string> names;
        for (const TElfFile::TSymbol& symbol : fFile.symbols)
            if (symbol.isDefined && !IsOfLinker(symbol.name) && (symbol.isGlobal || !IsOfStandardLibrary(symbol.name)))
                names.push_back(symbol.name);
        if (!names.empty())
            Add("L01", "the library exports symbols of its own: " + NamesText(names),
                "build it with -fvisibility=hidden, make them static, or link with a version script { local: *; };");
    }

    void CheckUndefined() {
        const TProviders providers(fPath, fFile);
        if (!providers.Missing().empty())
            return Add("L02", "the library needs " + NamesText(providers.Missing()) + ", which is not found",
                       "install it, or do not link with it");
        std::vector<std::string> names;
        for (const TElfFile::TSymbol& symbol : fFile.symbols)
            if (!symbol.isDefined && symbol.isGlobal && !providers.Provide(symbol.name)) names.push_back(symbol.name);
        if (!names.empty())
            Add("L02", "nobody provides what the library refers to: " + NamesText(names),
                "link it with the library that has them, or add the source that is missing");
    }

    void CheckRegistration() {
        if (!fFile.Refers("kyrRegisterPlugin") && !fFile.Refers("_ZN11TRootObject16GetPluginManagerEv"))
            Add("L03", "the library never calls kyrRegisterPlugin, so that it holds no plugin",
                "call it in a function with the attribute constructor");
    }

    void CheckHardening() {
        if (fFile.hasExecutableStack)
            Add("L06", "the library wants an executable stack", "link it with -Wl,-z,noexecstack");
        if (fFile.hasTextRelocations) Add("L06", "the library has text relocations", "compile it with -fPIC");
        for (const std::string& path : fFile.runPaths)
            if (!StartsWith(path, "$ORIGIN"))
                Add("L06", "the library looks for others in '" + VisibleText(path) + "' (RUNPATH)",
                    "install it as a target, or remove the path with chrpath -d");
    }

    const std::string fPath;
    TFindings& fFindings;
    const TElfFile fFile;
};

}  // namespace

void CheckLibrary(const std::string& path, TFindings& findings) { TLibraryCheck(path, findings).Check(); }

void CheckFolder(const std::string& path, TFindings& findings) {
    for (const TMisplacement& found : FindMisplaced(path)) AddMisplacement(found, findings);
}
