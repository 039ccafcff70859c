#ifndef KYR_MODEL_TPROPERTYLAYOUT_H
#define KYR_MODEL_TPROPERTYLAYOUT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class TCIMPropertyDecl;

/// Which properties an instance has, and in what order: the normalised names and the declarations of its class at the
/// moment it was made. Every instance made while the class stays as it is shares one layout.
class TPropertyLayout {
public:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    /// A declaration counts under the name that it has now; of two with one name the first counts.
    explicit TPropertyLayout(const std::vector<const TCIMPropertyDecl*>& declarations);

    size_t Size() const { return fEntries.size(); }
    const TCIMPropertyDecl& DeclarationAt(size_t index) const { return *fEntries[index].second; }
    /// The index of a normalised name, or kNone.
    size_t Find(std::string_view name) const;
    bool HasSameNames(const TPropertyLayout& other) const;

private:
    std::vector<std::pair<std::string, const TCIMPropertyDecl*>> fEntries;  // sorted by name
};

#endif
