#ifndef KYR_HOST_RENDER_INSTANCETEXT_H
#define KYR_HOST_RENDER_INSTANCETEXT_H

#include <string>
#include <vector>

#include "base/Output.h"

class TCIMClass;
class TContainer;
class TInstanceChoice;

/// How instances are printed; each is an option of kyr show.
struct TPrintOptions {
    bool raw = false;         ///< plain values in place of display text
    bool null = false;        ///< properties without a value too
    bool references = false;  ///< what each instance is associated with
    bool tree = false;        ///< each instance below the one that contains it
    std::string treeTo = {};  ///< of the tree, only what leads to this instance and what is below it; empty: all
    bool provenance = false;  ///< where values came from, and why others are missing
    bool stable = false;      ///< without values that change by themselves
    bool keys = false;        ///< also the keys that IsScopeKey tells
};

/// Prints the chosen instances for people, class by class, or with options.tree as PrintTree does. Of all instances,
/// those of which there are many are only counted, and so are associations. Returns whether there was any instance.
bool PrintInstances(const TContainer& container, const TInstanceChoice& choice, const TPrintOptions& options,
                    TOutput& output);

/// Prints the instances of the classes, except associations, as a tree with a line for each. The children of an
/// instance are those that associations make a part of it, or dependent on it, also by way of instances that are not
/// printed. An instance with several owners stands below the one that is deepest in the tree, and below the others only
/// a line refers to it. With a path, only what leads to that instance and what is below it is printed; raises
/// TCommandError if there is no such instance. Returns whether any instance was printed.
bool PrintTree(const TContainer& container, const std::vector<TCIMClass*>& classes, const std::string& path,
               TOutput& output);

#endif
