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

bool IsPluginLibrary(const fs::path& path) { return EndsWith(path.string(), TOSSpecific::kPluginExtension); }

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
    const std::string name = PluginNameOf(library.string());
    return folder.filename() == name && fs::exists(folder / DocumentOfPlugin(name), error);
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

class TMisplaced {
public:
    explicit TMisplaced(const fs::path& folder) : fFolder(folder) {
        AddFiles(folder, 0, fFiles);
        std::sort(fFiles.begin(), fFiles.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
        const auto isIn = [this](int depth) {
            return std::any_of(fFiles.begin(), fFiles.end(),
                               [=](const auto& file) { return file.depth == depth && IsPluginLibrary(file.path); });
        };
        fIsPluginFolder = isIn(1);
        fTop = fIsPluginFolder || !isIn(0) ? 1 : 0;
    }

    std::vector<TMisplacement> Find() const {
        std::vector<TMisplacement> found;
        for (const TPlacedFile& file : fFiles) {
            const std::string path = file.path.string();
            const bool mayBeAtHome = file.depth < fTop || !fIsPluginFolder;
            if (IsPluginLibrary(file.path) && file.depth != fTop && !(mayBeAtHome && IsAtHome(file.path)))
                found.push_back({DepthOf(file), path, RightPath(path, PluginFolder())});
            if (IsMisnamedLibrary(file.path))
                found.push_back({EMisplacement::eOtherEnding, path,
                                 file.depth == fTop ? RightName(path) : RightPath(path, PluginFolder())});
        }
        return found;
    }

private:
    EMisplacement DepthOf(const TPlacedFile& file) const {
        return file.depth < fTop ? EMisplacement::eInPluginFolder : EMisplacement::eTooDeep;
    }

    std::string PluginFolder() const { return (fTop == 1 ? fFolder : (fFolder / "..").lexically_normal()).string(); }

    fs::path fFolder;
    std::vector<TPlacedFile> fFiles;
    bool fIsPluginFolder;  // plugins are in its folders
    int fTop;              // the depth at which plugins are found
};

}  // namespace

std::vector<TMisplacement> FindMisnaming(const std::string& library) {
    std::vector<TMisplacement> found;
    std::error_code error;
    const fs::path path = library, folder = path.parent_path();
    if (!IsLibraryName(path.filename().string()))
        found.push_back({EMisplacement::eOtherEnding, library, RightName(library)});
    else if (!StartsWith(path.filename().string(), "lib"))
        found.push_back({EMisplacement::eNoLib, library, RightName(library)});
    if (fs::absolute(path, error).parent_path().filename().string().find("lib") != std::string::npos)
        found.push_back(
            {EMisplacement::eLibInFolder, library, RightPath(library, (folder / "..").lexically_normal().string())});
    return found;
}

std::vector<TMisplacement> FindMisplaced(const std::string& folder) { return TMisplaced(folder).Find(); }

void AddMisplacement(const TMisplacement& misplacement, TFindings& findings) {
    constexpr const char* kRules[] = {"L10", "L11", "L04", "L09", "L09"};
    const TReason reason = Misplaced(misplacement.what, misplacement.right);
    const std::string sentence = SentenceOf(reason), end = "; ";
    findings.Add(kRules[static_cast<int>(misplacement.what)], {misplacement.path}, reason.detail,
                 sentence.substr(reason.detail.size() + end.size()));
}
