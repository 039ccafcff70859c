#ifndef IPLUGINMANAGER_H
#define IPLUGINMANAGER_H

#include <boost/shared_ptr.hpp>
#include <list>
#include <string>

#include "kyr/kyrExport.h"

class IPlugin;
class IPluginCallbacks;
class TContainer;

/// Finds, loads and initialises plugins, and holds the schema that their documents make up. All calls come from one
/// thread, which is also the one on which plugins run.
class KYR_API IPluginManager {
public:
    virtual ~IPluginManager();

    /// Loads every plugin library that stands one directory below the root. The names of those directories are
    /// tested against the current directory: make the root the current directory first, or nothing is found. A plugin
    /// that fails is passed over. The log tells of a library that cannot be opened and of a document that cannot be
    /// understood; it has nothing about an init entry that failed (see IPlugin::IsInitialized) or a document that is
    /// not there (see IPlugin::GetClassesCollected).
    ///
    /// Raises kyrStatusFileSystemError for a directory that cannot be opened, before any library is loaded.
    virtual void FindAndLoadPlugins() = 0;
    /// Loads one library, initialises the plugins that it registers and reads the document of each. A path that
    /// was loaded before is left alone. A library that cannot be opened is two lines in the log, "ERROR: Failed to
    /// load plugin.  Reason: " with the loader's words and "DLL ... failed to initialize properly", and no status. A
    /// document that fails raises its status; the plugin is then listed without classes, and those that the library
    /// registered behind it are dropped. Libraries are opened with RTLD_GLOBAL, so that plugins share one symbol scope.
    virtual void LoadPlugin(std::string path) = 0;
    /// Called while a library is being loaded, for each plugin that registers. The result belongs to the manager,
    /// the callbacks remain the caller's and must outlive it. The plugin joins the list when loading has ended.
    virtual IPlugin* RegisterPlugin(IPluginCallbacks* callbacks) = 0;
    /// The plugins in load order: the manager's own list, in which those whose init entry or document failed stand too.
    virtual std::list<boost::shared_ptr<IPlugin>>& GetPluginsContainer() = 0;
    /// The first plugin of exactly that name, or null. Asks each plugin for its name anew.
    virtual IPlugin* SearchForPluginByName(std::string name) = 0;
    /// Qualifier declarations and classes of all documents. It must hold declarations of PLUGINNAME and
    /// PLUGINVERSION before plugins are loaded: populate it with a base document first. It belongs to the manager, and
    /// is also where kyrGetSystemName looks for the computer system.
    virtual TContainer* GetSchema() = 0;
};

#endif
