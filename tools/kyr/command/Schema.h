#ifndef SCHEMA_H
#define SCHEMA_H

#include "Exit.h"
#include "command/Options.h"
#include "text/Output.h"

/// Prints the tree of classes, or one class in full, of this machine or of a saved collection.
EExit RunSchema(const TOptions& options, TOutput& output);

#endif
