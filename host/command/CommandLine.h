#ifndef KYR_HOST_COMMAND_COMMANDLINE_H
#define KYR_HOST_COMMAND_COMMANDLINE_H

#include "base/ExitStatus.h"

/// Does what the arguments say, and gives the exit status. What fails is told on standard error; nothing is raised.
EExit RunCommandLine(int argc, char** argv);

#endif
