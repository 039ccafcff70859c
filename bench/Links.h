#ifndef KYR_BENCH_LINKS_H
#define KYR_BENCH_LINKS_H

#include <string>
#include <vector>

#include "kyr/TContainer.h"

class TCIMInstance;

/// A container with count ends of either kind and count instances of an association, each of which ties one end of
/// the one kind to one of the other.
class TLinks {
public:
    explicit TLinks(unsigned count);

    /// Walks from a few ends, evenly chosen; each walk looks at every link. Gives what was found: one for each walk.
    std::size_t WalkReferences() const;
    std::size_t WalkAssociators() const;
    /// The object paths of the ends from which the walks start.
    std::vector<std::string> StartPaths() const;

private:
    std::vector<TCIMInstance*> Starts() const;

    TContainer fContainer;
};

constexpr unsigned kWalks = 10;

std::string FrontPath(unsigned number);
std::string BackPath(unsigned number);

#endif
