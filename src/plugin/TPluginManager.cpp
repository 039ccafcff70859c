#include "kyr/TPluginManager.h"

#include "kyr/IPluginCallbacks.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "kyr/kyrPlugin.h"
#include "platform/CoreLog.h"

TPluginManager* TPluginManager::fgInstance = nullptr;

int TPluginManager::Initialize(std::string path) {
    fgInstance = new TPluginManager(path);
    return 0;
}

TPluginManager* TPluginManager::GetInstance() { return fgInstance; }

TPluginManager::TPluginManager(const std::string& path) : fPath(path) {}

TPluginManager::~TPluginManager() {
    if (fgInstance == this) fgInstance = nullptr;
}

void TPluginManager::FindAndLoadPlugins() {
    for (const std::string& path : TOSSpecific::FindPlugins(fPath)) {
        try {
            LoadPlugin(path);
        } catch (const TKYRException&) {
            // A plugin that cannot be loaded does not stop the others.
        }
    }
}

void TPluginManager::LoadPlugin(std::string path) {
    for (const boost::shared_ptr<IPlugin>& plugin : fPlugins)
        if (plugin->GetPath() == path) return;
    LogCore(kyrLogDebug, path);
    DiscardPendingPlugins();
    try {
        TOSSpecific::LoadPluginLibrary(path);
    } catch (const TKYRException&) {
        kyrWriteLog(nullptr, kyrLogError, ("DLL " + path + " failed to initialize properly").c_str());
        return;
    }
    InitializeProviders(path);
}

IPlugin* TPluginManager::RegisterPlugin(IPluginCallbacks* callbacks) {
    fPendingPlugins.push_back(boost::shared_ptr<TPlugin>(new TPlugin(callbacks)));
    return fPendingPlugins.back().get();
}

std::list<boost::shared_ptr<IPlugin>>& TPluginManager::GetPluginsContainer() { return fPlugins; }

IPlugin* TPluginManager::SearchForPluginByName(std::string name) {
    for (const boost::shared_ptr<IPlugin>& plugin : fPlugins)
        if (plugin->GetCallbacks()->GetName() == name) return plugin.get();
    return nullptr;
}

TContainer* TPluginManager::GetSchema() { return &fSchema; }
std::string TPluginManager::GetPluginManagerPath() const { return fPath; }

void TPluginManager::DiscardPendingPlugins() { fDiscardedPlugins.splice(fDiscardedPlugins.end(), fPendingPlugins); }

void TPluginManager::InitializeProviders(const std::string& path) {
    while (!fPendingPlugins.empty()) {
        const boost::shared_ptr<TPlugin> plugin = fPendingPlugins.front();
        fPendingPlugins.pop_front();
        plugin->SetPath(path);
        fPlugins.push_back(plugin);
        try {
            plugin->Initialize();
        } catch (...) {
            continue;  // it stays in the list without a document; see docs/oddities.md
        }
        const int32_t type = plugin->GetCallbacks()->GetType();
        if (type == kyrPluginDataCollector || type == kyrPluginDocumentOnly) plugin->LoadSpecificationDocument();
    }
}
