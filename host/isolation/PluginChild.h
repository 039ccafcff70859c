#ifndef KYR_HOST_ISOLATION_PLUGINCHILD_H
#define KYR_HOST_ISOLATION_PLUGINCHILD_H

#include "model/ClassSelection.h"

struct TPluginLibrary;
class TPluginContainer;
class TRecordStream;

/// What a plugin's process is to do.
struct TPluginTask {
    TPluginContainer& container;
    const TClassSelection& wanted;  ///< if only the schema, the library is loaded and not asked
    bool wholeLog;                  ///< somebody reads more of the log than its errors and warnings
    bool logInFile;                 ///< the log file of the host is written to, so that its descriptor stays open
};

/// The work of a plugin's process, once it is forked: loads the library, asks the plugin, and puts all that comes of it
/// on the stream. What the plugin prints goes to the descriptor.
[[noreturn]] void RunPluginChild(const TPluginLibrary& library, const TPluginTask& task, TRecordStream& stream,
                                 int printed);

#endif
