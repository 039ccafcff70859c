#ifndef ASSOC_H
#define ASSOC_H

#include "Exit.h"
#include "Options.h"
#include "Output.h"

/// Prints what the instance named by its object path is tied to.
EExit RunAssoc(const TOptions& options, TOutput& output);

#endif
