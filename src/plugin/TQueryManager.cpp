#include "kyr/TQueryManager.h"

#include <algorithm>

#include "kyr/IPlugin.h"
#include "kyr/IPluginBasicQueryCallbacks.h"
#include "kyr/IPluginCallbacks.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TKYRException.h"
#include "kyr/TRootObject.h"
#include "kyr/kyrPlugin.h"
#include "model/TCIMQualifierImpl.h"
#include "platform/CoreLog.h"

namespace {

IPluginBasicQueryCallbacks* GetQueryCallbacks(IPluginCallbacks* callbacks) {
    IPluginBasicQueryCallbacks* query = dynamic_cast<IPluginBasicQueryCallbacks*>(callbacks);
    if (!query)
        LogAndThrow(kyrStatusInvalidPlugin,
                    "Plugin " + callbacks->GetName() + " doesn't support the IPluginBasicQueryCallbacks.");
    return query;
}

bool IsAskedFor(const TCIMClass& cls, const std::vector<std::string>& filter, bool associations) {
    if (!filter.empty() && std::find(filter.begin(), filter.end(), cls.GetName()) == filter.end()) return false;
    return !cls.IsAbstract() && !TCIMQualifierImpl::IsTrue(cls.FindQualifier("DONTCOLLECT")) &&
           cls.EnumerateInstances(false).empty() && cls.IsAssociation() == associations;
}

void AskPlugin(const IPlugin& plugin, TContainer* container, const std::vector<std::string>& filter,
               bool associations) {
    IPluginCallbacks* callbacks = plugin.GetCallbacks();
    IPluginBasicQueryCallbacks* query = GetQueryCallbacks(callbacks);
    std::vector<TCIMClass*> classes;
    for (TCIMClass* cls : plugin.GetClassesCollected()) {
        if (!IsAskedFor(*cls, filter, associations)) continue;
        LogCore(kyrLogDebug, "Asking plugin " + callbacks->GetName() + " for " + cls->GetName());
        classes.push_back(cls);
    }
    if (!classes.empty()) query->GetData(container, classes);
}

}  // namespace

TQueryManager* TQueryManager::fgInstance = nullptr;

int TQueryManager::Initialize() {
    fgInstance = new TQueryManager;
    return 0;
}

TQueryManager* TQueryManager::GetInstance() { return fgInstance; }

TQueryManager::~TQueryManager() {
    if (fgInstance == this) fgInstance = nullptr;
}

void TQueryManager::RunQuery(TContainer* container, std::vector<std::string> classNames) {
    RunAllPlugins(container, classNames, false);
    RunAllPlugins(container, classNames, true);
}

void TQueryManager::RunAllPlugins(TContainer* container, std::vector<std::string> classNames, bool associations) {
    for (const boost::shared_ptr<IPlugin>& plugin : TRootObject::GetPluginManager()->GetPluginsContainer())
        if (plugin->GetCallbacks()->GetType() == kyrPluginDataCollector)
            EnumerateInstances(plugin.get(), container, classNames, associations);
}

void TQueryManager::EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                                       bool associations) {
    try {
        AskPlugin(*plugin, container, classNames, associations);
    } catch (const std::exception& e) {
        LogCoreError("Plugin " + plugin->GetCallbacks()->GetName() + " threw exception " + e.what());
    }
}
