#ifndef TPLUGINMANAGER_H
#define TPLUGINMANAGER_H

#include "kyr/IPlugin.h"
#include "kyr/IPluginManager.h"
#include "kyr/TContainer.h"

/// The core's plugin manager. Libraries are never closed, and plugins never leave the list. What the operations of the
/// interface do is told in IPluginManager.
class KYR_API TPluginManager : public IPluginManager {
public:
    /// A plugin in one of four states: registered while its library is being loaded; listed, its init entry having
    /// failed; initialised without a document; initialised with the classes of its document.
    class KYR_API TPlugin : public IPlugin {
    public:
        /// The callbacks stay the caller's, and must outlive the plugin.
        explicit TPlugin(IPluginCallbacks* callbacks);
        ~TPlugin() override;

        IPluginCallbacks* GetCallbacks() const override;
        void Initialize() override;
        bool IsInitialized() const override;
        std::string GetPath() const override;
        std::string GetSpecificationPath() const override;
        std::vector<TCIMClass*> GetClassesCollected() const override;
        /// The manager gives every plugin of a library the library's path, once its constructors have run.
        void SetPath(const std::string& path);
        /// Merges the plugin's document into the manager's schema and marks its classes with PLUGINNAME and
        /// PLUGINVERSION. Raises what GetSpecificationPath and TContainer::PopulateContainerFromFile raise. Where the
        /// schema declares no such qualifiers it raises kyrStatusNotFound, with "Couldn't find PLUGINNAME/PLUGINVERSION
        /// qualifier decl" in the log; the classes are in the schema by then.
        void LoadSpecificationDocument();

    private:
        /// A class that carries an equal mark already, and one that may not be replaced, keeps it.
        void MarkCollectedClasses();

        IPluginCallbacks* fCallbacks;  // not owned
        std::vector<TCIMClass*> fClassesCollected;
        std::string fPath;
        bool fInitialized;
    };

    /// Makes the one manager, with an empty schema; always returns 0. The path is the root folder of the plugins and is
    /// not looked at yet. A manager that is there already is not destroyed: delete it first. The logger must be there.
    static int Initialize(std::string path);
    /// The same object as TRootObject::GetPluginManager. Null before Initialize, and after its deletion.
    static TPluginManager* GetInstance();

    /// For Initialize: plugins register with the manager of GetInstance, whichever loads them.
    explicit TPluginManager(const std::string& path);
    /// Destroys the schema and the list, and calls no entry of a plugin. Log entries in memory point to plugins: clear
    /// or copy them before. Libraries stay open.
    ~TPluginManager() override;

    void FindAndLoadPlugins() override;
    void LoadPlugin(std::string path) override;
    IPlugin* RegisterPlugin(IPluginCallbacks* callbacks) override;
    std::list<boost::shared_ptr<IPlugin>>& GetPluginsContainer() override;
    IPlugin* SearchForPluginByName(std::string name) override;
    TContainer* GetSchema() override;
    /// The root folder of the plugins, as Initialize was given it.
    std::string GetPluginManagerPath() const;

private:
    /// Drops what a load that failed halfway has left.
    void DiscardPendingPlugins();
    /// Lists the plugins that have just registered, runs their init entries and reads their documents.
    void InitializeProviders(const std::string& path);

    static TPluginManager* fgInstance;

    std::string fPath;
    std::list<boost::shared_ptr<IPlugin>> fPlugins;           // in load order
    std::list<boost::shared_ptr<TPlugin>> fPendingPlugins;    // registered, not yet in the list
    std::list<boost::shared_ptr<TPlugin>> fDiscardedPlugins;  // kept alive: their callbacks and log entries point here
    TContainer fSchema;
};

#endif
