#ifndef PLUGINCHILD_H
#define PLUGINCHILD_H

#include <string>
#include <vector>

struct TLibrary;
class TStreamingContainer;
class TTape;

/// What a plugin's process is to do.
struct TPluginTask {
    TStreamingContainer& container;
    const std::vector<std::string>* classNames;  ///< to ask for, empty for all; null: the library is only loaded
    bool wholeLog;                               ///< and not only its errors and warnings
    bool logInFile;                              ///< it writes to the file of the log too
};

/// The work of a plugin's process: loads the library, asks it, and puts on the tape what comes of it. An exception that
/// nobody catches ends the process: what is above this call is not its own.
[[noreturn]] void RunPluginChild(const TLibrary& library, const TPluginTask& task, TTape& tape) noexcept;

#endif
