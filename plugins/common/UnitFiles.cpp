#include "UnitFiles.h"

std::string FindUnitFile(const TSystemRoot& root, const std::string& name) {
    for (const char* folder : kUnitFolders)
        if (std::string path = std::string(folder) + "/" + name; root.ReadLink(path) || root.Exists(path)) return path;
    return "";
}
