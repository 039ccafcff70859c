#include "base/PluginFolders.h"

#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

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

bool IsSame(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error) || a == b;
}

std::string Variable(const char* name) {
    const char* const text = secure_getenv(name);
    return text == nullptr ? "" : text;
}

// A program that runs with more rights than its caller has must not take code from the caller.
bool HasMoreRightsThanItsUser() {
    return geteuid() == 0 || getuid() == 0 || geteuid() != getuid() || getauxval(AT_SECURE) != 0;
}

// Where the variables do not say an absolute path there is no such folder.
std::string FindUserFolder() {
    if (HasMoreRightsThanItsUser()) return "";
    std::string data = Variable("XDG_DATA_HOME");
    if (!StartsWith(data, "/")) data = Variable("HOME") + "/.local/share";
    return StartsWith(data, "/") && data != "/.local/share" ? data + kBelowLibraries : "";
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

void Add(const std::string& name, bool isRequired, std::vector<TPluginFolder>& folders) {
    if (name.empty()) return;
    const std::string path = Absolute(name);
    const auto isSame = [&](const TPluginFolder& folder) { return IsSame(folder.path, path); };
    if (std::none_of(folders.begin(), folders.end(), isSame))
        folders.push_back({path, isRequired, IsSame(path, FindDefaultPlugins())});
}

// In a folder with the sticky bit nobody can replace what is another's.
bool MayOthersWrite(const fs::path& path, bool isAbove) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode)) return false;
    if (isAbove && (status.st_mode & S_ISVTX) != 0) return false;
    const bool mayGroup = (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0;
    return status.st_uid != 0 || mayGroup || (status.st_mode & S_IWOTH) != 0;
}

}  // namespace

std::vector<TPluginFolder> FindPluginFolders(const std::vector<std::string>& given) {
    std::vector<TPluginFolder> folders;
    const std::vector<std::string> words = given.empty() ? std::vector<std::string>{kDefaultPlugins} : given;
    for (const std::string& word : words) {
        if (word != kDefaultPlugins)
            Add(word, true, folders);
        else
            for (const std::string& path : FindDefaults()) Add(path, false, folders);
    }
    return folders;
}

std::string FindWritableByOthers(const std::string& path) {
    if (MayOthersWrite(path, false)) return path;
    for (fs::path above = fs::path(path).parent_path(); above.has_relative_path(); above = above.parent_path())
        if (MayOthersWrite(above, true)) return above.string();
    return "";
}
