#ifndef KYR_HOST_STATES_PLUGINREPORT_H
#define KYR_HOST_STATES_PLUGINREPORT_H

#include <cstdint>
#include <string>
#include <vector>

#include "base/CoreLog.h"
#include "model/CollectionState.h"

/// What a plugin tells about itself.
struct TPluginInfo {
    std::string name;
    std::string version;
    int32_t type;
    bool initialised;
};

/// An error or warning, or a line that the plugin printed.
struct TMessage {
    std::string className;  ///< the class that it is about; empty: none, or not known yet
    kyrLogSeverity severity;
    std::string text;
    bool core = false;  ///< logged by the core
};

/// One call of a plugin's data entry: for ordinary classes, or for associations.
struct TDataCall {
    bool associations;
    std::vector<std::string> asked;
    bool finished = false;
    std::string failure = {};  ///< the status or exception that it finished with; empty: it went well
};

/// What became of one library, be it loaded here or in a process of its own.
struct TPluginReport {
    std::vector<TPluginInfo> plugins;
    std::vector<TMessage> messages;
    std::vector<TLogLine> log;  ///< all that came from a process of its own
    std::vector<TDataCall> dataCalls;
    std::string loadFailure;  ///< what loading it raised
    TOutcome end;             ///< how its process ended

    /// Adds a line of the log to the messages if it is an error or a warning. Lines must come in the order in which
    /// they were logged, between the calls that they belong to.
    void AddLogLine(const TLogLine& line);
    /// The plugin that the classes of the document belong to; null if there is none.
    const TPluginInfo* FindOwner() const;
    /// The name of the plugin; the library's path if none was registered.
    const std::string& NameIn(const std::string& path) const { return plugins.empty() ? path : plugins.front().name; }
    /// The call in which the class was asked for; null if it was not.
    const TDataCall* FindDataCall(const std::string& className) const;
    /// The first error that was logged, or an empty text.
    std::string FirstError() const;
};

#endif
