#ifndef KYR_BENCH_LINKS_H
#define KYR_BENCH_LINKS_H

#include <string>
#include <vector>

#include "kyr/TContainer.h"

class TCIMInstance;

/// A container with two classes of `count` instances each, and `count` instances of an association between them.
class TLinks {
public:
    explicit TLinks(unsigned count);

    /// Follows the association from kWalks instances. Returns how many results were found, which is one for each walk.
    std::size_t WalkReferences() const;
    std::size_t WalkAssociators() const;
    /// The object paths of the instances from which the walks start.
    std::vector<std::string> StartPaths() const;

private:
    TContainer fContainer;
    std::vector<TCIMInstance*> fStarts;
};

constexpr unsigned kWalks = 100;

std::string FrontPath(unsigned number);
std::string BackPath(unsigned number);

#endif
