#include "base/PluginFolders.h"

#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <utility>

#include "base/Locations.h"
#include "base/Text.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kBelowLibraries = "/kyrcore/plugins";
constexpr const char* kLocalLibraries[] = {"/usr/local/lib", "/usr/local/lib/" KYRCORE_MULTIARCH};

std::string Absolute(const std::string& path) {
    std::error_code error;
    const std::string absolute = fs::absolute(path, error).lexically_normal().string();
    if (error) return path;
    return absolute.size() > 1 && absolute.back() == '/' ? absolute.substr(0, absolute.size() - 1) : absolute;
}

std::string Variable(const char* name) {
    const char* const text = secure_getenv(name);
    return text == nullptr ? "" : text;
}

// A program that runs with more rights than its caller has must not take code from the caller.
bool HasMoreRightsThanItsUser() {
    return geteuid() == 0 || getuid() == 0 || geteuid() != getuid() || getauxval(AT_SECURE) != 0;
}

// Where the variables do not say an absolute path there is no such folder; one that is another user's does not count.
std::string FindUserFolder() {
    if (HasMoreRightsThanItsUser()) return "";
    std::string data = Variable("XDG_DATA_HOME");
    if (!StartsWith(data, "/")) data = Variable("HOME") + "/.local/share";
    if (!StartsWith(data, "/") || data == "/.local/share") return "";
    // Another user's environment may have been kept.
    struct stat status {};
    const std::string folder = data + kBelowLibraries;
    return stat(folder.c_str(), &status) == 0 && (status.st_uid == geteuid() || status.st_uid == 0) ? folder : "";
}

std::vector<std::string> FindDefaults() {
    std::vector<std::string> paths;
    std::istringstream variable(Variable("KYR_PLUGIN_PATH"));
    for (std::string path; std::getline(variable, path, ':');) paths.push_back(path);
    for (const char* const libraries : kLocalLibraries) paths.push_back(std::string(libraries) + kBelowLibraries);
    paths.push_back(FindUserFolder());
    paths.push_back(FindDefaultPlugins());
    return paths;
}

// Device and inode, or the path of a folder that is not there.
std::string IdentityOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return path;
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

/// Folders in the order of their search, each once.
class TFolders {
public:
    void Add(const std::string& name, bool isRequired) {
        if (name.empty()) return;
        const std::string path = Absolute(name), identity = IdentityOf(path);
        if (fKnown.insert(identity).second) fFolders.push_back({path, isRequired, identity == fOwn});
    }
    std::vector<TPluginFolder> Take() { return std::move(fFolders); }

private:
    const std::string fOwn = IdentityOf(FindDefaultPlugins());
    std::vector<TPluginFolder> fFolders;
    std::set<std::string> fKnown;
};

bool CanSuperuserAloneWrite(const struct stat& status) {
    const bool mayGroup = (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0;
    return status.st_uid == 0 && !mayGroup && (status.st_mode & S_IWOTH) == 0;
}

// Who could write the executable, or is the user of this process, gains nothing by writing here.
bool IsAsSafeAsExecutable(const struct stat& status) {
    struct stat executable {};
    if (stat("/proc/self/exe", &executable) != 0) return false;
    const bool isOwnerTrusted = status.st_uid == 0 || status.st_uid == geteuid() || status.st_uid == executable.st_uid;
    const bool isGroupTrusted =
        status.st_gid == 0 || (status.st_gid == executable.st_gid && (executable.st_mode & S_IWGRP) != 0);
    return isOwnerTrusted && (isGroupTrusted || (status.st_mode & S_IWGRP) == 0) && (status.st_mode & S_IWOTH) == 0;
}

using TIsSafe = bool (*)(const struct stat& status);

// In a folder with the sticky bit nobody can replace what is another's.
bool IsSafe(const fs::path& path, bool isAbove, TIsSafe isSafe) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode)) return true;
    return (isAbove && (status.st_mode & S_ISVTX) != 0) || isSafe(status);
}

std::string FindUnsafe(const std::string& path, TIsSafe isSafe) {
    if (!IsSafe(path, false, isSafe)) return path;
    for (fs::path above = fs::path(path).parent_path(); above.has_relative_path(); above = above.parent_path())
        if (!IsSafe(above, true, isSafe)) return above.string();
    return "";
}

}  // namespace

std::vector<TPluginFolder> FindPluginFolders(const std::vector<std::string>& given) {
    TFolders folders;
    const std::vector<std::string> words = given.empty() ? std::vector<std::string>{kDefaultPlugins} : given;
    for (const std::string& word : words) {
        if (word != kDefaultPlugins)
            folders.Add(word, true);
        else
            for (const std::string& path : FindDefaults()) folders.Add(path, false);
    }
    return folders.Take();
}

std::string FindWritableByOthers(const std::string& path) { return FindUnsafe(path, CanSuperuserAloneWrite); }

bool IsAsSafeAsExecutable(const std::string& path) {
    bool (*const isSafe)(const struct stat&) = IsAsSafeAsExecutable;
    return FindUnsafe(path, isSafe).empty();
}
