#include "base/Locations.h"

#include <sys/auxv.h>

#include <filesystem>
#include <initializer_list>

#include "base/ExitStatus.h"

namespace fs = std::filesystem;

namespace {

// Where /proc is not mounted, the name that the program was started under has to do.
fs::path FindExecutable() {
    std::error_code error;
    const fs::path path = fs::read_symlink("/proc/self/exe", error);
    if (!error) return path;
    const auto name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));  // NOLINT(performance-no-int-to-ptr)
    return name == nullptr ? fs::path() : fs::canonical(name, error);
}

// The first of the paths, relative to the executable's folder, that exists; empty if none does.
std::string FindBesideExecutable(std::initializer_list<const char*> candidates) {
    std::error_code error;
    const fs::path folder = FindExecutable().parent_path();
    if (folder.empty()) return "";
    for (const char* candidate : candidates)
        if (const fs::path path = folder / candidate; fs::exists(path, error)) return path.lexically_normal().string();
    return "";
}

}  // namespace

// The installed folders come first: what a build tree has beside bin/ may be anything in an installed one.

std::string FindDefaultPlugins() { return FindBesideExecutable({KYR_INSTALLED_PLUGINS, "../plugins"}); }

std::string FindDefaultSchema() {
    return FindBesideExecutable({KYR_INSTALLED_SCHEMA "/kyrcore.xml", "../schema/kyrcore.xml"});
}

std::string FindStateDocument() {
    const std::string path = FindBesideExecutable({KYR_INSTALLED_SCHEMA "/collection.xml", "../schema/collection.xml"});
    if (path.empty()) throw TCommandError(eExitNothing, "no collection.xml found beside the program; install it whole");
    return path;
}

std::string FindTemplates() {
    const std::string path = FindBesideExecutable({KYR_INSTALLED_SCHEMA "/templates", "../templates"});
    if (path.empty()) throw TCommandError(eExitNothing, "no templates found beside the program; install it whole");
    return path;
}
