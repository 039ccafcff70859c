#ifndef INSTANCETREE_H
#define INSTANCETREE_H

#include <vector>

#include "text/Output.h"

class TCIMClass;
class TContainer;

/// Prints the instances of the ordinary ones among the classes as a tree, a line for each: below an instance stands
/// what associations make a part of it, or dependent on it. Who has several such owners stands in full below the one
/// that is deepest in the tree, and is only mentioned below the others. Gives whether there was any instance.
bool PrintTree(const TContainer& container, const std::vector<TCIMClass*>& classes, TOutput& output);

#endif
