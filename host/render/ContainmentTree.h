#ifndef KYR_HOST_RENDER_CONTAINMENTTREE_H
#define KYR_HOST_RENDER_CONTAINMENTTREE_H

#include <cstddef>
#include <deque>
#include <unordered_map>
#include <vector>

class TCIMInstance;
class TContainer;

/// A tree of instances, made from the associations between them. An instance that associations give several owners has
/// the deepest of them as its parent; cycles are cut.
class TContainmentTree {
public:
    struct TNode {
        const TCIMInstance* instance;
        size_t depth;  ///< 0 for an instance without a parent
        /// Instances that it owns too, but that stand elsewhere in the tree, not below it.
        std::vector<const TCIMInstance*> alsoContains;
    };

    /// Builds the tree of the given instances from all association instances of the container.
    TContainmentTree(const TContainer& container, std::vector<const TCIMInstance*> instances);

    /// All instances in depth-first order, parents before children.
    std::vector<TNode> Walk() const;

private:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    void AddParts(const TCIMInstance& association);
    void FindParents();
    void Place(size_t owner, std::deque<size_t>& ready, std::deque<size_t>& reached, std::vector<size_t>& waiting);
    std::vector<size_t> OrderByParents() const;
    std::vector<const TCIMInstance*> OtherPartsOf(size_t owner, const std::vector<size_t>& first,
                                                  const std::vector<size_t>& sizes) const;

    std::vector<const TCIMInstance*> fInstances;
    std::unordered_map<const TCIMInstance*, size_t> fNumbers;  // of the instances in fInstances
    // For each instance, by its number:
    std::vector<std::vector<size_t>> fParts;  // the instances that associations make a part of it
    std::vector<size_t> fParents;             // kNone: it is a root
    std::vector<size_t> fDepths;
    std::vector<bool> fPlaced;  // its parent is final
};

#endif
