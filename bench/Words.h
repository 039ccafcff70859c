#ifndef KYR_BENCH_WORDS_H
#define KYR_BENCH_WORDS_H

#include <cstddef>

#include <vector>

#include "kyr/TContainer.h"

class TCIMProperty;

/// A container with instances of a class, each with a number that is displayed as one of twenty words.
class TWords {
public:
    explicit TWords(unsigned count);

    /// Makes the display text of every number; returns the sum of their lengths.
    std::size_t DisplayAll() const;

private:
    TContainer fContainer;
    std::vector<const TCIMProperty*> fStates;
};

#endif
