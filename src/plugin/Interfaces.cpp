// Defined here, so that vtable and type information of each interface are emitted once, in the library.

#include "kyr/IPlugin.h"
#include "kyr/IPluginBasicQueryCallbacks.h"
#include "kyr/IPluginCallbacks.h"
#include "kyr/IPluginManager.h"
#include "kyr/IQueryManager.h"

IPlugin::~IPlugin() = default;
IPluginBasicQueryCallbacks::~IPluginBasicQueryCallbacks() = default;
IPluginCallbacks::~IPluginCallbacks() = default;
IPluginManager::~IPluginManager() = default;
IQueryManager::~IQueryManager() = default;
