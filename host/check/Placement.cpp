#include "check/Placement.h"

#include <algorithm>
#include <filesystem>

#include "base/ExitStatus.h"
#include "base/Text.h"
#include "check/ElfFile.h"
#include "kyr/TOSSpecific.h"

namespace fs = std::filesystem;

namespace {

constexpr int kDeepest = 4;  // folders below the one that is looked into
constexpr size_t kMostFiles = 10'000;

const std::string& Ending() { return TOSSpecific::kPluginExtension; }

// "foo" of "libfoo.pi.so", "foo.pi.so" and "libfoo.so"
std::string NameOf(const fs::path& library) {
    std::string name = library.filename().string();
    name.resize(std::min(name.find(Ending()), name.find(".so")));
    if (StartsWith(name, "lib")) name.erase(0, 3);
    return name.empty() ? "plugin" : name;
}

std::string FileFor(const std::string& name) { return "lib" + name + Ending(); }

std::string WithoutLib(std::string name, const std::string& otherwise) {
    for (size_t at = name.find("lib"); at != std::string::npos; at = name.find("lib")) name.erase(at, 3);
    return name.empty() ? otherwise : name;
}

bool IsPluginLibrary(const fs::path& path) { return EndsWith(path.string(), Ending()); }

// A library of another name that registers a plugin when it is loaded.
bool IsMisnamedLibrary(const fs::path& path) {
    if (!EndsWith(path.string(), ".so") || IsPluginLibrary(path)) return false;
    try {
        return ReadElfFile(path.string()).Refers("kyrRegisterPlugin");
    } catch (const TCommandError&) {
        return false;
    }
}

// In a folder of its name with its document: a plugin folder may well be the one above.
bool IsAtHome(const fs::path& library) {
    std::error_code error;
    const fs::path folder = fs::absolute(library, error).lexically_normal().parent_path();
    const std::string name = NameOf(library);
    return folder.filename() == name && fs::exists(folder / (name + TOSSpecific::kSpecificationExtension), error);
}

struct TPlacedFile {
    fs::path path;  // below the folder
    int depth;      // 0: in the folder itself
};

void AddFiles(const fs::path& folder, int depth, std::vector<TPlacedFile>& files) {
    std::error_code error, ignored;
    // What CMake builds lies below the sources, which are no plugin folder.
    if (fs::exists(folder / "CMakeCache.txt", ignored)) return;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (files.size() >= kMostFiles) return;
        if (entry.is_directory(ignored) && depth < kDeepest && (depth == 0 || !entry.is_symlink(ignored)))
            AddFiles(entry.path(), depth + 1, files);
        else if (EndsWith(entry.path().string(), ".so") && entry.is_regular_file(ignored))
            files.push_back({entry.path(), depth});
    }
}

TMisplacement WrongEnding(const std::string& path, const std::string& right) {
    return {"L10", path, "the name of the library does not end in " + Ending() + ", so that no host loads it",
            "name it " + right};
}

class TMisplaced {
public:
    explicit TMisplaced(const fs::path& folder) : fFolder(folder) {
        AddFiles(folder, 0, fFiles);
        std::sort(fFiles.begin(), fFiles.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
        const auto isIn = [this](int depth) {
            return std::any_of(fFiles.begin(), fFiles.end(),
                               [=](const auto& file) { return file.depth == depth && IsPluginLibrary(file.path); });
        };
        fTop = isIn(1) || !isIn(0) ? 1 : 0;
    }

    std::vector<TMisplacement> Find() const {
        std::vector<TMisplacement> found;
        for (const TPlacedFile& file : fFiles) {
            if (IsPluginLibrary(file.path) && file.depth != fTop && !IsAtHome(file.path))
                found.push_back(WrongDepth(file));
            if (IsMisnamedLibrary(file.path)) found.push_back(WrongEnding(file.path.string(), RightPath(file)));
        }
        return found;
    }

private:
    std::string RightPath(const TPlacedFile& file) const {
        const std::string name = NameOf(file.path);
        const fs::path place = file.depth == fTop ? file.path.parent_path() : fFolder / WithoutLib(name, "plugin");
        return (place / FileFor(name)).string();
    }

    TMisplacement WrongDepth(const TPlacedFile& file) const {
        const char* const where = file.depth < fTop ? "in the plugin folder itself" : "too deep";
        return {"L09", file.path.string(),
                std::string("the library stands ") + where +
                    ": a host looks for plugins in the folders of the plugin folder, and not below them",
                "move it, with its document, to " + RightPath(file)};
    }

    fs::path fFolder;
    std::vector<TPlacedFile> fFiles;
    int fTop;  // the depth at which plugins are found
};

}  // namespace

std::vector<TMisplacement> FindMisnaming(const std::string& library) {
    std::vector<TMisplacement> found;
    std::error_code error;
    const fs::path path = library, folder = path.parent_path();
    const std::string name = NameOf(path),
                      folderName = fs::absolute(folder / "x", error).parent_path().filename().string();
    if (path.string().find(Ending()) == std::string::npos)
        found.push_back(WrongEnding(library, (folder / FileFor(name)).string()));
    else if (!StartsWith(path.filename().string(), "lib"))
        found.push_back({"L11", library,
                         "the library's name does not begin with 'lib', so that its document is not found",
                         "name it " + (folder / FileFor(name)).string()});
    if (folderName.find("lib") != std::string::npos)
        found.push_back({"L04", library,
                         "the folder '" + folderName +
                             "' has 'lib' in its name: the core drops the first 'lib' of the path to find the document",
                         "rename the folder to '" + WithoutLib(folderName, name) + "'"});
    return found;
}

std::vector<TMisplacement> FindMisplaced(const std::string& folder) { return TMisplaced(folder).Find(); }
