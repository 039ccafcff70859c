#ifndef TQUERYMANAGER_H
#define TQUERYMANAGER_H

#include "kyr/IQueryManager.h"

/// The core's query manager; it has no state.
class KYR_API TQueryManager : public IQueryManager {
public:
    /// Makes the one query manager; returns 0.
    static int Initialize();
    /// Null before Initialize.
    static TQueryManager* GetInstance();

    ~TQueryManager() override;

    void RunQuery(TContainer* container, std::vector<std::string> classNames) override;
    void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                            bool associations) override;
    /// One of the two passes of RunQuery: association classes, or all others.
    void RunAllPlugins(TContainer* container, std::vector<std::string> classNames, bool associations);

private:
    static TQueryManager* fgInstance;
};

#endif
