#include "Session.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

#include "Exit.h"
#include "Output.h"
#include "kyr/IPlugin.h"
#include "kyr/IPluginCallbacks.h"
#include "kyr/IPluginManager.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "kyr/TPluginManager.h"
#include "kyr/TRootObject.h"
#include "kyr/kyrPlugin.h"

namespace fs = std::filesystem;

namespace {

bool IsLibraryName(const std::string& name) { return name.find(TOSSpecific::kPluginExtension) != std::string::npos; }

// A pipe in place of a library must not hold us up.
std::error_code AddLibraries(const fs::path& folder, std::vector<std::string>& libraries) {
    std::error_code error, ignored;
    for (const fs::directory_entry& file : fs::directory_iterator(folder, error))
        if (IsLibraryName(file.path().filename().string()) && file.is_regular_file(ignored))
            libraries.push_back(file.path().string());
    return error;
}

// The plugin libraries one folder below the current one, in the order of their names: where two plugins declare a
// class, it is the same one each time that brings it. A folder that cannot be read costs its own plugins only.
std::vector<std::string> FindLibraries(TFailures& failures) {
    std::vector<std::string> libraries;
    std::error_code error, ignored;
    for (const fs::directory_entry& folder : fs::directory_iterator(".", error)) {
        if (!folder.is_directory(ignored)) continue;
        if (const std::error_code unreadable = AddLibraries(folder, libraries))
            failures.Add({folder.path().string(), "", "cannot read its folder: " + unreadable.message()});
    }
    if (error) throw TCommandError(eExitNothing, "cannot read the plugin folder: " + error.message());
    std::sort(libraries.begin(), libraries.end());
    return libraries;
}

std::string DocumentOf(const IPlugin& plugin) {
    try {
        return plugin.GetSpecificationPath();
    } catch (const TKYRException&) {
        return "of " + plugin.GetPath();
    }
}

bool BringsClasses(const IPlugin& plugin) {
    try {
        return !plugin.GetClassesCollected().empty();
    } catch (const TKYRException&) {
        return false;
    }
}

}  // namespace

TSession::TSession(const TSessionOptions& options, TFailures& failures) : fLog(options), fFailures(failures) {
    TPluginManager::Initialize(".");
    ReadBaseDocument(options.schema);
    EnterPluginFolder(options.plugins);
    const std::vector<std::string> libraries = FindLibraries(fFailures);
    if (libraries.empty()) Complain("no plugins in '" + options.plugins + "'");
    for (const std::string& path : libraries) LoadLibrary(path);
}

TContainer& TSession::Schema() const { return *TRootObject::GetPluginManager()->GetSchema(); }

std::string TSession::NameOf(const IPlugin& plugin) {
    try {
        return plugin.GetCallbacks()->GetName();
    } catch (const std::exception&) {
        return plugin.GetPath();
    }
}

void TSession::ReadBaseDocument(const std::string& path) {
    try {
        Schema().PopulateContainerFromFile(path);
    } catch (const TKYRException& e) {
        NoteErrors("");
        throw TCommandError(eExitNothing, "cannot read the base document '" + path + "': " + e.what());
    }
    NoteErrors("");
}

// Libraries are named from inside the plugin folder: the first "lib" of a library's path is taken away to name its
// document, and must be the one in the file's own name.
void TSession::EnterPluginFolder(const std::string& path) {
    if (chdir(path.c_str()) == 0) return;
    throw TCommandError(eExitNothing, "cannot enter the plugin folder '" + path + "': " + std::strerror(errno));
}

void TSession::LoadLibrary(const std::string& path) {
    IPluginManager& manager = *TRootObject::GetPluginManager();
    const auto& plugins = manager.GetPluginsContainer();
    const size_t before = plugins.size();
    std::string refusal;
    try {
        manager.LoadPlugin(path);
    } catch (const std::exception& e) {
        refusal = e.what();
    }
    if (plugins.size() == before) {
        if (!NoteErrors(path)) fFailures.Add({path, "", "the library registers no plugin"});
        return;
    }
    for (auto added = std::next(plugins.begin(), static_cast<long>(before)); added != plugins.end(); ++added)
        CheckPlugin(**added, *added == plugins.back() ? refusal : "");
    NoteErrors(NameOf(*plugins.back()));
}

void TSession::CheckPlugin(const IPlugin& plugin, const std::string& refusal) {
    std::string reason;
    if (!plugin.IsInitialized())
        reason = "its init entry failed";
    else if (!refusal.empty())
        reason = "cannot read its document " + DocumentOf(plugin) + ": " + refusal;
    else if (plugin.GetCallbacks()->GetType() == kyrPluginDataCollector && !BringsClasses(plugin))
        reason = "its document brings no class of its own";
    if (reason.empty())
        fUsable.insert(&plugin);
    else
        fFailures.Add({NameOf(plugin), "", reason});
}

// Gives whether there were any.
bool TSession::NoteErrors(const std::string& plugin) {
    bool any = false;
    for (const ILogger::TLogEntry& entry : fLog.Take()) {
        if (entry.severity != kyrLogError) continue;
        fFailures.Add({plugin, "", entry.text});
        any = true;
    }
    return any;
}
