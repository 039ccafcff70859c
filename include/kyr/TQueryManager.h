#ifndef TQUERYMANAGER_H
#define TQUERYMANAGER_H

#include "kyr/IQueryManager.h"

/// The core's query manager; it has no state. What the operations of the interface do is told in IQueryManager.
class KYR_API TQueryManager : public IQueryManager {
public:
    /// Makes the one query manager; always returns 0. One that is there already is not destroyed.
    static int Initialize();
    /// The same object as TRootObject::GetQueryManager. Null before Initialize, and after its deletion.
    static TQueryManager* GetInstance();

    ~TQueryManager() override;

    void RunQuery(TContainer* container, std::vector<std::string> classNames) override;
    void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                            bool associations) override;
    /// One of the two passes of RunQuery: association classes, or all others. Asks the plugins of type
    /// kyrPluginDataCollector in load order, those whose init entry failed among them.
    void RunAllPlugins(TContainer* container, std::vector<std::string> classNames, bool associations);

private:
    static TQueryManager* fgInstance;
};

#endif
