#ifndef KYR_HOST_STATES_PLUGINREPORT_H
#define KYR_HOST_STATES_PLUGINREPORT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/CoreLog.h"
#include "kyr/TRefusedCall.h"
#include "model/CollectionState.h"

/// What a plugin registered itself with.
struct TPluginInfo {
    std::string name;
    std::string version;
    std::string interfaceVersion;  ///< the one it was built for, as it says; empty: it says none
    int32_t type;                  ///< kyrPluginDataCollector and the like
    bool initialised;              ///< its init entry succeeded
};

/// An error or warning of the log, or a line that the plugin printed on its standard output or standard error.
struct TMessage {
    std::string className;  ///< the class that it is about; empty: none, or not found yet
    kyrLogSeverity severity;
    std::string text;
    bool core = false;                      ///< logged by the core, not by the plugin
    TReason reason = {};                    ///< what the text says, as data; none for most
    std::optional<TRefusedCall> call = {};  ///< that was refused, of which the message tells

    /// Whether the call was about a reference. Its class is then the one that the reference leads to, and not the one
    /// that is incomplete without it.
    bool IsOfReference() const;
};

/// Why a call of a plugin's data entry failed; empty if it went well.
struct TCallFailure {
    std::string text = {};         ///< "returned" and the status in words, or that an exception left it
    int32_t status = kyrStatusOK;  ///< kyrStatusAccessDenied: the plugin refused to answer

    explicit operator bool() const { return !text.empty(); }
};

/// One call of a plugin's data entry, which is called once for ordinary classes and once for associations.
struct TDataCall {
    bool associations;
    std::vector<std::string> asked;  ///< the names of the classes
    bool finished = false;
    TCallFailure failure = {};
    TMessage lastRefused = {};  ///< the last call of the plugin that was refused meanwhile, as its message
};

/// How loading and running one library went, in this process or in one of its own.
struct TPluginReport {
    std::vector<TPluginInfo> plugins;
    std::vector<TMessage> messages;
    std::vector<TLogLine> log;  ///< all lines logged in the plugin's own process, to be printed here
    std::vector<TDataCall> dataCalls;
    std::string loadFailure;           ///< the exception that loading it raised; empty: none
    TOutcome end;                      ///< how its process ended
    std::vector<std::string> sandbox;  ///< what held of the sandbox of its process, or why nothing did
    size_t messageBytes = 0;           ///< that the messages of the log take

    /// Adds a line of the log to the messages if it is an error or a warning. Lines must be added in the order in which
    /// they were logged, and a data call before the lines that follow it. If there are too many, the rest is dropped,
    /// and the end says so.
    void AddLogLine(const TLogLine& line);
    /// Adds a call that was refused, in place of what the core has just logged about it.
    void AddRefusedCall(TRefusedCall call);
    /// The plugin that owns the classes of the document: the first one initialised that uses a document. Null if there
    /// is none.
    const TPluginInfo* FindOwner() const;
    /// Whether it can be asked for the classes of its document.
    bool IsLoaded() const;
    /// The name of the first plugin; the given path of the library if none was registered.
    const std::string& NameIn(const std::string& path) const { return plugins.empty() ? path : plugins.front().name; }
    /// The call that asked for the class; null if none did.
    const TDataCall* FindDataCall(const std::string& className) const;
    /// The first error among the messages; empty if there is none.
    std::string FirstError() const;

private:
    bool TakeRoom(const std::string& text);
};

#endif
