#ifndef KYR_HOST_BASE_PLUGINFOLDERS_H
#define KYR_HOST_BASE_PLUGINFOLDERS_H

#include <string>
#include <vector>

/// A folder with a folder for each plugin.
struct TPluginFolder {
    std::string path;         ///< absolute
    bool isRequired = false;  ///< named by an option, so that it must be there
    bool isOwn = false;       ///< the one that belongs to this executable
};

/// In place of a folder's name: the folders that are searched if none is named.
constexpr const char* kDefaultPlugins = "default";

/// The plugin folders in the order in which they are searched, each once. Without any given these are the default ones:
/// those in the variable KYR_PLUGIN_PATH, the machine's, the user's, and the one that belongs to this executable. Not
/// all of them need to exist.
std::vector<TPluginFolder> FindPluginFolders(const std::vector<std::string>& given);

/// The file or folder, if others than the superuser can write it or put something else in its place; otherwise empty.
/// What a link leads to does not count: whoever made it has chosen that.
std::string FindWritableByOthers(const std::string& path);

/// Whether nobody can write the file or folder, or put something else in its place, but the superuser, the user of this
/// process, and who can replace this executable. Links are treated as above.
bool IsAsSafeAsExecutable(const std::string& path);

#endif
