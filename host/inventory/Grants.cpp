#include "inventory/Grants.h"

#include <algorithm>

#include "base/ExitStatus.h"
#include "base/NearMatches.h"
#include "base/PluginFolders.h"
#include "states/PluginLibrary.h"

namespace {

[[noreturn]] void Refuse(const std::string& grant, const std::string& why) {
    throw TCommandError(eExitUsage, "--grant " + grant + ": " + why);
}

// The name is the library's, which may be given with the letters "lib" too. A plugin could take the name of another, so
// that a grant for one of two would be a grant for both.
TPluginLibrary& GetLibrary(const std::string& name, const std::string& grant, std::list<TPluginLibrary>& libraries) {
    std::vector<std::string> names;
    TPluginLibrary* found = nullptr;
    for (TPluginLibrary& library : libraries) {
        names.push_back(library.Name());
        if (name != library.Name() && name != "lib" + library.Name()) continue;
        if (found != nullptr) Refuse(grant, "there are two, " + found->path + " and " + library.path);
        found = &library;
    }
    if (found == nullptr) Refuse(grant, "no plugin '" + name + "'" + DidYouMean(name, names));
    return *found;
}

// A library whose document was not read is not loaded either.
bool HasNeed(const TPluginLibrary& library, const std::string& need) {
    const auto needsIt = [&](const TCIMClass* cls) {
        const std::vector<std::string> needs = NeedsOf(*cls);
        return std::find(needs.begin(), needs.end(), need) != needs.end();
    };
    return library.notLoaded.reason || std::any_of(library.classes.begin(), library.classes.end(), needsIt);
}

// What was installed with this executable can be replaced only by who can replace the executable.
bool IsTrusted(const TPluginLibrary& library) {
    return library.isOwn && IsAsSafeAsExecutable(library.FullPath()) &&
           IsAsSafeAsExecutable(library.FullDocumentPath());
}

// Looking into other processes changes nothing, so that own plugins need not be granted it.
constexpr ENeed kOwnPluginsMay = eNeedsProcesses;

void GrantToOwn(std::list<TPluginLibrary>& libraries) {
    for (TPluginLibrary& library : libraries)
        if (HasNeed(library, WordFor(kOwnPluginsMay)) && IsTrusted(library)) library.granted |= kOwnPluginsMay;
}

}  // namespace

void ApplyGrants(const std::vector<std::string>& grants, std::list<TPluginLibrary>& libraries) {
    GrantToOwn(libraries);
    for (const std::string& grant : grants) {
        const size_t colon = grant.rfind(':');
        const std::string need = grant.substr(colon + 1);
        TPluginLibrary& library = GetLibrary(grant.substr(0, colon), grant, libraries);
        if (!HasNeed(library, need)) Refuse(grant, "the document of " + library.path + " has no class that needs it");
        library.granted |= NeedFor(need);
    }
}
