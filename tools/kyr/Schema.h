#ifndef SCHEMA_H
#define SCHEMA_H

#include "Exit.h"
#include "Failures.h"
#include "Options.h"
#include "Output.h"

/// Prints the tree of classes, or one class in full.
EExit RunSchema(const TOptions& options, TOutput& output, TFailures& failures);

#endif
