#ifndef TPLUGINMANAGER_H
#define TPLUGINMANAGER_H

#include "kyr/IPlugin.h"
#include "kyr/IPluginManager.h"
#include "kyr/TContainer.h"

/// The core's plugin manager. Libraries are never closed, and plugins never leave the list.
class KYR_API TPluginManager : public IPluginManager {
public:
    class KYR_API TPlugin : public IPlugin {
    public:
        explicit TPlugin(IPluginCallbacks* callbacks);
        ~TPlugin() override;

        IPluginCallbacks* GetCallbacks() const override;
        void Initialize() override;
        bool IsInitialized() const override;
        std::string GetPath() const override;
        std::string GetSpecificationPath() const override;
        std::vector<TCIMClass*> GetClassesCollected() const override;
        void SetPath(const std::string& path);
        /// Merges the plugin's document into the manager's schema and marks its classes with PLUGINNAME and
        /// PLUGINVERSION. Raises what reading raises, and kyrStatusNotFound where the schema lacks those two.
        void LoadSpecificationDocument();

    private:
        void MarkCollectedClasses();

        IPluginCallbacks* fCallbacks;  // not owned
        std::vector<TCIMClass*> fClassesCollected;
        std::string fPath;
        bool fInitialized;
    };

    /// Makes the one manager, with an empty schema; returns 0. A manager that is there already is not destroyed.
    static int Initialize(std::string path);
    /// Null before Initialize.
    static TPluginManager* GetInstance();

    explicit TPluginManager(const std::string& path);
    ~TPluginManager() override;

    void FindAndLoadPlugins() override;
    void LoadPlugin(std::string path) override;
    IPlugin* RegisterPlugin(IPluginCallbacks* callbacks) override;
    std::list<boost::shared_ptr<IPlugin>>& GetPluginsContainer() override;
    IPlugin* SearchForPluginByName(std::string name) override;
    TContainer* GetSchema() override;
    /// The root folder of the plugins.
    std::string GetPluginManagerPath() const;

private:
    void DiscardPendingPlugins();
    void InitializeProviders(const std::string& path);

    static TPluginManager* fgInstance;

    std::string fPath;
    std::list<boost::shared_ptr<IPlugin>> fPlugins;
    std::list<boost::shared_ptr<TPlugin>> fPendingPlugins;
    std::list<boost::shared_ptr<TPlugin>> fDiscardedPlugins;  // kept alive: their callbacks and log entries point here
    TContainer fSchema;
};

#endif
