#ifndef COLLECT_H
#define COLLECT_H

#include "Exit.h"
#include "command/Options.h"
#include "text/Output.h"

/// Asks the plugins, and prints all instances or saves them.
EExit RunCollect(const TOptions& options, TOutput& output);

#endif
