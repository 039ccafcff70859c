// Here stand the type information and tables of the interfaces, for every library that uses them.

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
