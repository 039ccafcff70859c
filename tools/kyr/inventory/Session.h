#ifndef SESSION_H
#define SESSION_H

#include <list>
#include <string>
#include <vector>

#include "command/Options.h"
#include "inventory/Library.h"
#include "inventory/Log.h"
#include "isolation/StreamingContainer.h"

/// This machine: the core set up as a host must, with the documents of the plugins found, and the plugins themselves
/// once they are run. There is one in a process. It changes the current folder.
///
/// There are two containers. The plugin manager's schema is where plugins look for the computer system, and what
/// their documents are read into when they are loaded. The instances are in the one that the session is given.
class TSession {
public:
    /// Raises TCommandError.
    TSession(const TSessionOptions& options, const TLog& log, TStreamingContainer& container);

    /// Loads the plugins, and asks them for the classes of those exact names; an empty list means all, null that they
    /// are only loaded. In the end the container tells how complete it is.
    void Run(const std::vector<std::string>* classNames);

private:
    /// Libraries that can run side by side, after those before them.
    using TRounds = std::vector<std::vector<TLibrary*>>;

    void ReadBaseDocument(const std::string& path);
    TRounds FindRounds();
    void ShareOutClasses();
    void TellLog(TLibrary& library) const;
    void RunHere(const TRounds& rounds, const std::vector<std::string>* classNames);
    int RunApart(const TRounds& rounds, const std::vector<std::string>* classNames);

    const TSessionOptions& fOptions;
    const TLog& fLog;
    TStreamingContainer& fContainer;
    std::list<TLibrary> fLibraries;  // in the order of their paths
};

#endif
