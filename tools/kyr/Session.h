#ifndef SESSION_H
#define SESSION_H

#include <set>
#include <string>

#include "Failures.h"
#include "Log.h"
#include "Options.h"

class IPlugin;
class TContainer;

/// The core set up as a host must: the log, the base document in the schema, and the plugins loaded, all that failed
/// being noted. There is one in a process. It changes the current folder.
class TSession {
public:
    /// Raises TCommandError.
    TSession(const TSessionOptions& options, TFailures& failures);

    TContainer& Schema() const;
    const TLog& Log() const { return fLog; }
    /// Where failures are noted.
    TFailures& Failures() const { return fFailures; }
    /// False for a plugin that failed while it was loaded.
    bool IsUsable(const IPlugin& plugin) const { return fUsable.count(&plugin) != 0; }

    /// The plugin's name, or its library's path if it has none.
    static std::string NameOf(const IPlugin& plugin);

private:
    void ReadBaseDocument(const std::string& path);
    void EnterPluginFolder(const std::string& path);
    void LoadLibrary(const std::string& path);
    bool NoteErrors(const std::string& plugin);
    void CheckPlugin(const IPlugin& plugin, const std::string& refusal);

    TLog fLog;
    TFailures& fFailures;
    std::set<const IPlugin*> fUsable;
};

#endif
