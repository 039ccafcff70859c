#ifndef KYR_HOST_COMMAND_COMMANDLINE_H
#define KYR_HOST_COMMAND_COMMANDLINE_H

#include "base/ExitStatus.h"

/// Runs the command that the arguments name and returns the exit status. Errors are printed on standard error; nothing
/// is raised.
EExit RunCommandLine(int argc, char** argv);

#endif
