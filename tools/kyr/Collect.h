#ifndef COLLECT_H
#define COLLECT_H

#include "Exit.h"
#include "Failures.h"
#include "Options.h"
#include "Output.h"

/// Asks the plugins and prints all instances.
EExit RunCollect(const TOptions& options, TOutput& output, TFailures& failures);

#endif
