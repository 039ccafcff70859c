#ifndef IDENTITY_H
#define IDENTITY_H

#include "Exit.h"
#include "command/Options.h"
#include "text/Output.h"

/// Prints what a report asks about the machine.
EExit RunIdentity(const TOptions& options, TOutput& output);

#endif
