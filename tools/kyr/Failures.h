#ifndef FAILURES_H
#define FAILURES_H

#include <map>
#include <string>
#include <vector>

/// What went wrong on the way to a result: who failed, at which class if that is known, and why.
struct TFailure {
    std::string plugin;     ///< empty: the base document
    std::string className;  ///< may be empty
    std::string reason;

    bool operator<(const TFailure& other) const;
};

/// The failures of one run. The same one is kept once, and counted.
class TFailures {
public:
    void Add(const TFailure& failure);
    bool IsEmpty() const { return fFailures.empty(); }
    /// On standard error, in the order in which they came.
    void Print() const;

private:
    std::vector<const std::pair<const TFailure, int>*> fOrder;
    std::map<TFailure, int> fFailures;
};

#endif
