#ifndef PLUGINREPORT_H
#define PLUGINREPORT_H

#include <cstdint>
#include <string>
#include <vector>

#include "states/State.h"

/// What a plugin tells about itself.
struct TPluginFacts {
    std::string name;
    std::string version;
    int32_t type;
    bool initialised;
};

/// An error or warning, or a line that the plugin printed.
struct TNote {
    std::string className;  ///< empty: it names none
    kyrLogSeverity severity;
    std::string text;
};

/// One call of a plugin's data entry: for ordinary classes, or for associations.
struct TPass {
    bool associations;
    std::vector<std::string> asked;
    bool finished = false;
    std::string end = {};  ///< what it finished with; empty: it went well
};

/// What became of one library, be it loaded here or in a process of its own.
struct TPluginReport {
    std::vector<TPluginFacts> plugins;
    std::vector<TNote> notes;
    std::vector<TLogLine> log;  ///< all that came from a process of its own
    std::vector<TPass> passes;
    std::string refusal;  ///< what loading it raised
    TVerdict end;         ///< how its process ended

    /// Takes in a line of the log.
    void Read(const TLogLine& line);
    /// The plugin that the classes of the document belong to; null if there is none.
    const TPluginFacts* FindOwner() const;
    /// The name of the plugin; the library's path if none was registered.
    const std::string& NameIn(const std::string& path) const { return plugins.empty() ? path : plugins.front().name; }
    /// The one in which the class was asked for; null if it was not.
    const TPass* FindPass(const std::string& className) const;
};

#endif
