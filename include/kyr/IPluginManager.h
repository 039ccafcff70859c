#ifndef IPLUGINMANAGER_H
#define IPLUGINMANAGER_H

#include <boost/shared_ptr.hpp>
#include <list>
#include <string>

#include "kyr/kyrExport.h"

class IPlugin;
class IPluginCallbacks;
class TContainer;

/// Finds, loads and initialises plugins, and holds the schema that their documents make up.
class KYR_API IPluginManager {
public:
    virtual ~IPluginManager();

    /// Loads every plugin library that stands one directory below the root. The names of those directories are
    /// tested against the current directory: make the root the current directory first. A plugin that fails is
    /// passed over; the log tells, unless it was the init entry that failed: see IPlugin::IsInitialized. Raises
    /// kyrStatusFileSystemError for a directory that cannot be opened.
    virtual void FindAndLoadPlugins() = 0;
    /// Loads one library, initialises the plugins that it registers and reads the document of each. A path that
    /// was loaded before is left alone. A library that cannot be opened is a line in the log; a document that
    /// fails raises its status.
    virtual void LoadPlugin(std::string path) = 0;
    /// Called while a library is being loaded, for each plugin that registers. The result belongs to the manager,
    /// the callbacks remain the caller's and must outlive it.
    virtual IPlugin* RegisterPlugin(IPluginCallbacks* callbacks) = 0;
    /// The plugins in load order: the manager's own list.
    virtual std::list<boost::shared_ptr<IPlugin>>& GetPluginsContainer() = 0;
    /// The first plugin of exactly that name, or null.
    virtual IPlugin* SearchForPluginByName(std::string name) = 0;
    /// Qualifier declarations and classes of all documents. It must hold declarations of PLUGINNAME and
    /// PLUGINVERSION before plugins are loaded: populate it with a base document first.
    virtual TContainer* GetSchema() = 0;
};

#endif
