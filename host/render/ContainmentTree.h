#ifndef KYR_HOST_RENDER_CONTAINMENTTREE_H
#define KYR_HOST_RENDER_CONTAINMENTTREE_H

#include <cstddef>
#include <deque>
#include <unordered_map>
#include <vector>

class TCIMInstance;
class TContainer;

/// Instances placed one below the other. Each has one home; links that go in circles are cut.
class TContainmentTree {
public:
    struct TNode {
        const TCIMInstance* instance;
        size_t depth;
        /// What belongs to it too but has its home elsewhere, not below it.
        std::vector<const TCIMInstance*> alsoContains;
    };

    /// Takes the links from all association instances of the container.
    TContainmentTree(const TContainer& container, std::vector<const TCIMInstance*> instances);

    /// Each instance once, behind its owner.
    std::vector<TNode> Walk() const;

private:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    void Tie(const TCIMInstance& association);
    void FindParents();
    void Place(size_t owner, std::deque<size_t>& ready, std::deque<size_t>& reached, std::vector<size_t>& waiting);
    std::vector<size_t> OrderByParents() const;
    std::vector<const TCIMInstance*> OtherPartsOf(size_t owner, const std::vector<size_t>& first,
                                                  const std::vector<size_t>& sizes) const;

    std::vector<const TCIMInstance*> fInstances;
    std::unordered_map<const TCIMInstance*, size_t> fNumbers;
    // By the numbers of instances.
    std::vector<std::vector<size_t>> fParts;
    std::vector<size_t> fParents;
    std::vector<size_t> fDepths;
    std::vector<bool> fPlaced;
};

#endif
