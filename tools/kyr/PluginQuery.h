#ifndef PLUGINQUERY_H
#define PLUGINQUERY_H

#include "kyr/TQueryManager.h"

class TSession;

/// The core's query, which tells after each plugin what became of it: the log alone does not say at which class.
class TPluginQuery : public TQueryManager {
public:
    explicit TPluginQuery(const TSession& session) : fSession(session) {}

    /// Passes over plugins that failed while they were loaded; that has been told.
    void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                            bool associations) override;
    /// How many classes plugins were asked for.
    size_t CountAsked() const { return fAsked; }

private:
    const TSession& fSession;
    size_t fAsked = 0;
};

#endif
