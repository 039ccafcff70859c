#ifndef INSTANCETEXT_H
#define INSTANCETEXT_H

#include <vector>

#include "command/Options.h"
#include "text/Output.h"

class TCIMClass;
class TContainer;

/// Prints the instances of the classes for people, class by class, or with options.tree each below the one that it
/// belongs to. Gives whether there was any.
bool PrintInstances(const TContainer& container, const std::vector<TCIMClass*>& classes, const TOptions& options,
                    TOutput& output);

#endif
