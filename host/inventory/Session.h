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

/// This machine: the core set up as a host must, with the documents of the plugins found, and the plugins themselves
/// once they are run. There is one in a process. It changes the current folder.
///
/// There are two containers. The plugin manager's schema is where plugins look for the computer system, and what
/// their documents are read into when they are loaded. The instances are in the one that the session is given.
class TSession {
public:
    /// Raises TCommandError.
    TSession(const TSessionOptions& options, const TCoreLog& log, TPluginContainer& container);

    /// Loads the plugins, and asks them for the classes, unless only the schema is wanted. In the end the container
    /// tells how complete it is.
    void Run(const TClassSelection& wanted);

private:
    /// Libraries that can run side by side, after those before them.
    using TRounds = std::vector<std::vector<TPluginLibrary*>>;

    void ReadBaseDocument(const std::string& path);
    TRounds FindRounds();
    void AssignClassesToLibraries();
    void PrintLog(TPluginLibrary& library) const;
    void RunInProcess(const TRounds& rounds, const TClassSelection& wanted);
    int RunIsolated(const TRounds& rounds, const TClassSelection& wanted);

    const TSessionOptions& fOptions;
    const TCoreLog& fLog;
    TPluginContainer& fContainer;
    std::list<TPluginLibrary> fLibraries;  // in the order of their paths
};

#endif
