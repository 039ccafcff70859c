#ifndef KYR_HOST_ISOLATION_PLUGINPROXY_H
#define KYR_HOST_ISOLATION_PLUGINPROXY_H

#include <boost/shared_ptr.hpp>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "kyr/IPlugin.h"
#include "kyr/IPluginBasicQueryCallbacks.h"
#include "kyr/IPluginCallbacks.h"
#include "states/PluginLibrary.h"

/// Functions that are called before and after a plugin's data entry: with the classes that it is asked for, and with
/// the failure that it ended with, if any.
struct TCallObserver {
    std::function<void(const std::vector<TCIMClass*>&)> asked;
    std::function<void(const TCallFailure&)> ended;
};

/// Passes calls on to a plugin's callbacks, and reports those of the data entry to an observer.
class TProxyCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
public:
    explicit TProxyCallbacks(IPluginCallbacks& callbacks) : fCallbacks(callbacks) {}

    int32_t GetType() override { return fCallbacks.GetType(); }
    std::string GetName() override { return fCallbacks.GetName(); }
    std::string GetVersion() override { return fCallbacks.GetVersion(); }
    std::string GetInterfaceVersion() override { return fCallbacks.GetInterfaceVersion(); }
    void PrepareForUnload() override { fCallbacks.PrepareForUnload(); }
    void Init() override { fCallbacks.Init(); }
    void DeInit() override { fCallbacks.DeInit(); }
    /// Raises what the plugin's callback raises, and kyrStatusFail in place of what is no std::exception.
    void GetData(TContainer* container, std::vector<TCIMClass*>& classes) override;

    TCallObserver fObserver;

private:
    IPluginCallbacks& fCallbacks;
};

/// A plugin as its library registered it, but for the classes that it collects: they are those of the host's container,
/// into which its document was read before the library was loaded.
class TPluginProxy : public IPlugin {
public:
    TPluginProxy(boost::shared_ptr<IPlugin> plugin, std::vector<TCIMClass*> classes)
        : fPlugin(std::move(plugin)), fClasses(std::move(classes)), fCallbacks(*fPlugin->GetCallbacks()) {}

    void Observe(const TCallObserver& observer) { fCallbacks.fObserver = observer; }

    IPluginCallbacks* GetCallbacks() const override { return &fCallbacks; }
    void Initialize() override { fPlugin->Initialize(); }
    bool IsInitialized() const override { return fPlugin->IsInitialized(); }
    std::string GetPath() const override { return fPlugin->GetPath(); }
    std::string GetSpecificationPath() const override { return fPlugin->GetSpecificationPath(); }
    std::vector<TCIMClass*> GetClassesCollected() const override { return fClasses; }

private:
    const boost::shared_ptr<IPlugin> fPlugin;
    const std::vector<TCIMClass*> fClasses;
    mutable TProxyCallbacks fCallbacks;
};

/// Has the plugin manager load a library, and writes in the report which plugins it registers and what went wrong. The
/// one that is to be asked for the classes is replaced by a proxy, which is returned; null if there is none.
boost::shared_ptr<TPluginProxy> LoadLibrary(const TPluginLibrary& library, TPluginReport& report);

/// Makes the library's plugin folder the current one, to be called before a plugin runs. The core is given paths below
/// that folder: it derives the path of a document by removing the first "lib" of the library's path, which must not be
/// one in the path of the plugin folder. Plugins get the same path.
void EnterFolderOf(const TPluginLibrary& library);

#endif
