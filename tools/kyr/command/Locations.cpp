#include "command/Locations.h"

#include <filesystem>
#include <initializer_list>

namespace fs = std::filesystem;

namespace {

// The first of the places, each relative to the executable's folder, that exists.
std::string FindBesideExecutable(std::initializer_list<const char*> places) {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    if (error) return "";
    for (const char* place : places)
        if (const fs::path path = folder / place; fs::exists(path, error)) return path.lexically_normal().string();
    return "";
}

}  // namespace

std::string FindDefaultPlugins() { return FindBesideExecutable({"../plugins", "../lib/kyrcore/plugins"}); }

std::string FindDefaultSchema() {
    return FindBesideExecutable({"../schema/kyrcore.xml", "../share/kyrcore/kyrcore.xml"});
}

std::string FindStateDocument() {
    return FindBesideExecutable({"../schema/collection.xml", "../share/kyrcore/collection.xml"});
}
