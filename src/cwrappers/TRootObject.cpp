#include "kyr/TRootObject.h"

#include "kyr/TLogger.h"
#include "kyr/TPluginManager.h"
#include "kyr/TQueryManager.h"

IQueryManager* TRootObject::GetQueryManager() { return TQueryManager::GetInstance(); }
IPluginManager* TRootObject::GetPluginManager() { return TPluginManager::GetInstance(); }
ILogger* TRootObject::GetCoreLogger() { return TLogger::GetInstance(); }
