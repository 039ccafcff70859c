#ifndef KYR_HOST_DIFFERENCE_PAIRING_H
#define KYR_HOST_DIFFERENCE_PAIRING_H

#include <string>
#include <unordered_map>
#include <vector>

#include "difference/Scope.h"

class TCIMClass;
class TCIMInstance;

/// The same thing in two collections.
struct TPair {
    const TCIMInstance* before;
    const TCIMInstance* after;
    std::string identity = {};  ///< the value by which it was found at another path; empty: the path is the same
};

/// How the instances of one class in two collections belong together.
struct TPairing {
    std::vector<TPair> pairs;
    std::vector<const TCIMInstance*> onlyBefore;
    std::vector<const TCIMInstance*> onlyAfter;
};

/// The paths of things that have moved: from the path before to the path after, as TScope gives them.
using TMovedPaths = std::unordered_map<std::string, std::string>;

/// Pairs instances of the same path, unless they are different things by their identities, and what is left by those
/// identities. Associations are paired by what they refer to, which may have moved.
TPairing PairInstances(const TScope& before, const TCIMClass& old, const TScope& after, const TCIMClass& present);
TPairing PairAssociations(const TScope& before, const TCIMClass& old, const TScope& after, const TCIMClass& present,
                          const TMovedPaths& moved);

#endif
