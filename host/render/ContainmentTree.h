#ifndef KYR_HOST_RENDER_CONTAINMENTTREE_H
#define KYR_HOST_RENDER_CONTAINMENTTREE_H

#include <cstddef>
#include <deque>
#include <unordered_map>
#include <unordered_set>
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

    /// The instance, all that leads to it, and all below it; empty if it is not in the tree.
    std::unordered_set<const TCIMInstance*> BranchOf(const TCIMInstance& instance) const;
    /// Leaves the others out. Their parts become parts of what they are themselves parts of.
    void KeepOnly(const std::unordered_set<const TCIMInstance*>& kept);
    /// All instances in depth-first order, parents before children.
    std::vector<TNode> Walk();

private:
    using TNumbers = std::vector<size_t>;  // of instances in fInstances

    static constexpr size_t kNone = static_cast<size_t>(-1);

    void AddParts(const TCIMInstance& association);
    std::vector<TNumbers> Owners() const;
    TNumbers NearestParts(size_t owner, const TNumbers& newNumbers) const;
    void SetInstances(std::vector<const TCIMInstance*> instances, std::vector<TNumbers> parts);
    void FindParents();
    void Place(size_t owner, std::deque<size_t>& ready, std::deque<size_t>& reached, TNumbers& waiting);
    TNumbers OrderByParents() const;
    std::vector<const TCIMInstance*> OtherPartsOf(size_t owner, const TNumbers& first, const TNumbers& sizes) const;

    std::vector<const TCIMInstance*> fInstances;
    std::unordered_map<const TCIMInstance*, size_t> fNumbers;  // of the instances in fInstances
    // For each instance, by its number:
    std::vector<TNumbers> fParts;  // the instances that associations make a part of it
    TNumbers fParents;             // kNone: it is a root
    TNumbers fDepths;
    std::vector<bool> fPlaced;  // its parent is final
};

#endif
