#ifndef KYR_HOST_ISOLATION_PLUGINCHILD_H
#define KYR_HOST_ISOLATION_PLUGINCHILD_H

#include "model/ClassSelection.h"

struct TPluginLibrary;
class TPluginContainer;
class TRecordStream;

/// What a plugin's process is to do.
struct TPluginTask {
    TPluginContainer& container;
    const TClassSelection& wanted;  ///< of a schema alone, the library is only loaded
    bool wholeLog;                  ///< and not only its errors and warnings
    bool logInFile;                 ///< it writes to the file of the log too
};

/// The work of a plugin's process: loads the library, asks it, and puts on the stream what comes of it. An exception
/// that nobody catches ends the process: what is above this call is not its own.
[[noreturn]] void RunPluginChild(const TPluginLibrary& library, const TPluginTask& task,
                                 TRecordStream& stream) noexcept;

#endif
