#ifndef KYR_HOST_ISOLATION_PLUGINCHILD_H
#define KYR_HOST_ISOLATION_PLUGINCHILD_H

#include "model/ClassSelection.h"

struct TPluginLibrary;
class TPluginContainer;
class TRecordStream;
class TSandbox;
class TSharedSandboxResult;

/// What a plugin's process is to do.
struct TPluginTask {
    TPluginContainer& container;
    const TClassSelection& wanted;  ///< if only the schema, the library is loaded and not asked
    bool wholeLog;                  ///< somebody reads more of the log than its errors and warnings
    TSandbox& sandbox;
    int logFile;  ///< the descriptor of the host's log file; -1: it has none
};

/// The descriptors of the files, in memory, that a plugin's process writes.
struct TPluginFiles {
    int printed;  ///< what the plugin prints
    int log;      ///< what is logged, with all that goes only to a log file; -1: the host has no log file
};

/// The work of a plugin's process, once it is forked: enters the sandbox, loads the library, asks the plugin, and puts
/// all that comes of it on the stream and in the files. It has no other descriptor of the host.
[[noreturn]] void RunPluginChild(const TPluginLibrary& library, const TPluginTask& task, TRecordStream& stream,
                                 const TSharedSandboxResult& result, const TPluginFiles& files);

#endif
