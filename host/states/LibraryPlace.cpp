#include "states/LibraryPlace.h"

#include <algorithm>
#include <filesystem>

#include "base/Text.h"
#include "kyr/TOSSpecific.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kLib = "lib";  // in front of a library's name

// The core finds the document by taking away the first "lib" of the library's path, which must be that of the file.
std::string FolderOfPlugin(std::string name) {
    for (size_t lib = name.find(kLib); lib != std::string::npos; lib = name.find(kLib)) name.erase(lib, 3);
    return name.empty() ? "plugin" : name;
}

}  // namespace

bool IsLibraryName(const std::string& file) { return file.find(TOSSpecific::kPluginExtension) != std::string::npos; }

std::string PluginNameOf(const std::string& library) {
    const std::string file = fs::path(library).filename().string();
    const std::string name = file.substr(0, std::min(file.find(TOSSpecific::kPluginExtension), file.rfind(".so")));
    return StartsWith(name, kLib) ? name.substr(3) : name;
}

std::string LibraryOfPlugin(const std::string& name) { return kLib + name + TOSSpecific::kPluginExtension; }
std::string DocumentOfPlugin(const std::string& name) { return name + TOSSpecific::kSpecificationExtension; }

std::string RightName(const std::string& library) {
    return (fs::path(library).parent_path() / LibraryOfPlugin(PluginNameOf(library))).string();
}

std::string RightPath(const std::string& library, const std::string& pluginFolder) {
    const std::string name = PluginNameOf(library);
    return (fs::path(pluginFolder) / FolderOfPlugin(name) / LibraryOfPlugin(name)).string();
}

TReason Misplaced(EMisplacement misplacement, const std::string& right) {
    constexpr const char* kTexts[] = {"its name does not end in .pi.so", "its name does not begin with lib",
                                      "the letters lib stand in the name of its folder",
                                      "it lies in the plugin folder itself", "it lies too deep"};
    TReason reason = ReasonFor(EReason::eMisplaced, kTexts[static_cast<int>(misplacement)]);
    reason.file = right;
    return reason;
}
