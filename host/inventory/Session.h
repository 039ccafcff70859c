#ifndef KYR_HOST_INVENTORY_SESSION_H
#define KYR_HOST_INVENTORY_SESSION_H

#include <list>
#include <string>
#include <vector>

#include "base/CoreLog.h"
#include "inventory/SessionOptions.h"
#include "isolation/PluginContainer.h"
#include "model/ClassSelection.h"
#include "states/PluginLibrary.h"

/// Collects from this machine with the core's plugin manager, which must be there: finds the plugin libraries, reads
/// their documents and runs the plugins. Create only one in a process. With plugins in this process it changes the
/// current folder.
///
/// There are two containers. The one that the session is given gets the instances. The other is the schema of the
/// core's plugin manager: the core reads a plugin's document into it when it loads the plugin, and plugins look for the
/// computer system there.
class TSession {
public:
    /// Finds the plugins and reads the documents. Raises TCommandError.
    TSession(const TSessionOptions& options, const TCoreLog& log, TPluginContainer& container);

    /// Loads the plugins, asks them for the wanted classes, and adds the state instances to the container.
    void Run(const TClassSelection& wanted);

private:
    /// The libraries of a round may run at the same time; each round starts when the one before it has ended.
    using TRounds = std::vector<std::vector<TPluginLibrary*>>;

    void ReadBaseDocument(const std::string& path);
    TRounds FindRounds();
    void AssignClassesToLibraries();
    size_t SchemaBytes() const;
    void PrintLog(TPluginLibrary& library) const;
    void RunInProcess(const TRounds& rounds, const TClassSelection& wanted);
    int RunIsolated(const TRounds& rounds, const TClassSelection& wanted);

    const TSessionOptions& fOptions;
    const TCoreLog& fLog;
    TPluginContainer& fContainer;
    std::list<TPluginLibrary> fLibraries;
};

#endif
