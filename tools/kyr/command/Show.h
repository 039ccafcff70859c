#ifndef SHOW_H
#define SHOW_H

#include "Exit.h"
#include "command/Options.h"
#include "text/Output.h"

/// Prints the instances of this machine or of a saved collection.
EExit RunShow(const TOptions& options, TOutput& output);

#endif
