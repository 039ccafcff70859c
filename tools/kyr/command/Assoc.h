#ifndef ASSOC_H
#define ASSOC_H

#include "Exit.h"
#include "command/Options.h"
#include "text/Output.h"

/// Prints what the instance named by its object path is tied to.
EExit RunAssoc(const TOptions& options, TOutput& output);

#endif
