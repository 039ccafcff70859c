#include <dlfcn.h>

#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "platform/CoreLog.h"

const std::string TOSSpecific::kPluginExtension = ".pi.so";
const std::string TOSSpecific::kSpecificationExtension = ".properties.xml";
const std::string TOSSpecific::kFileSeparator = "/";

std::vector<std::string> TOSSpecific::FindPlugins(std::string root) {
    std::vector<std::string> libraries;
    for (const std::string& folder : ListDir(root)) {
        // Compatibility: hosts change into the root first, since the name is looked up in the current directory; see
        // docs/oddities.md.
        if (!DirExists(folder)) continue;
        const std::string path = root + "/" + folder + "/";
        for (const std::string& file : ListDir(path))
            if (file.find(kPluginExtension) != std::string::npos) libraries.push_back(path + file);
    }
    return libraries;
}

void* TOSSpecific::LoadPluginLibrary(std::string path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library)
        LogAndThrow(kyrStatusFileSystemError, std::string("ERROR: Failed to load plugin.  Reason: ") + dlerror());
    return library;
}

std::string TOSSpecific::BuildSpecificationPath(std::string libraryPath) {
    const size_t extension = libraryPath.find(kPluginExtension);
    if (extension == std::string::npos) throw TKYRException(kyrStatusFail);
    std::string path = libraryPath.substr(0, extension);
    // Compatibility: the first "lib" of the whole path, even in the name of a directory; see docs/oddities.md.
    const size_t prefix = path.find("lib");
    if (prefix == std::string::npos) throw TKYRException(kyrStatusFail);
    return path.erase(prefix, 3) + kSpecificationExtension;
}
