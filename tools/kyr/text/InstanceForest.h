#ifndef INSTANCEFOREST_H
#define INSTANCEFOREST_H

#include <cstddef>
#include <deque>
#include <unordered_map>
#include <vector>

class TCIMInstance;
class TContainer;

/// Instances placed one below the other. Each has one home; ties that go in circles are cut.
class TInstanceForest {
public:
    struct TNode {
        const TCIMInstance* instance;
        size_t depth;
        /// What belongs to it too but has its home elsewhere, not below it.
        std::vector<const TCIMInstance*> alsoOwns;
    };

    /// Takes the ties from all association instances of the container.
    TInstanceForest(const TContainer& container, std::vector<const TCIMInstance*> instances);

    /// Each instance once, behind its owner.
    std::vector<TNode> Walk() const;

private:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    void Tie(const TCIMInstance& association);
    void FindHomes();
    void Settle(size_t owner, std::deque<size_t>& ready, std::deque<size_t>& reached, std::vector<size_t>& waiting);
    std::vector<size_t> OrderByHomes() const;
    std::vector<const TCIMInstance*> StrayPartsOf(size_t owner, const std::vector<size_t>& first,
                                                  const std::vector<size_t>& sizes) const;

    std::vector<const TCIMInstance*> fInstances;
    std::unordered_map<const TCIMInstance*, size_t> fNumbers;
    // By the numbers of instances.
    std::vector<std::vector<size_t>> fParts;
    std::vector<size_t> fHomes;
    std::vector<size_t> fDepths;
    std::vector<bool> fSettled;
};

#endif
