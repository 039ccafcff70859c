#ifndef KYR_HOST_DIFFERENCE_IDENTITY_H
#define KYR_HOST_DIFFERENCE_IDENTITY_H

#include <string>
#include <unordered_map>
#include <vector>

class TCIMClass;
class TCIMInstance;

/// Whether a text that should tell a thing from others says nothing, as that of a field that nobody filled.
bool IsPlaceholder(const std::string& text);

/// The properties that have the qualifier Identity in either of the two classes: a file of an earlier version lacks it.
std::vector<std::string> IdentityPropertiesOf(const TCIMClass& before, const TCIMClass& after);

/// What tells the instances of one class in one collection apart, wherever they are: the values of those properties. Of
/// texts only those count that one instance alone has. Numbers, such as those of a maker and
/// a model, tell two things apart, but many things have the same.
class TIdentities {
public:
    TIdentities(const TCIMClass& cls, std::vector<std::string> properties);

    /// The names of the properties.
    const std::vector<std::string>& Properties() const { return fProperties; }
    /// What counts of the value of that property, if the instance has such a thing; empty if not.
    std::string ValueOf(const TCIMInstance& instance, const std::string& property) const;
    /// The instance that alone has that text; null if there is none.
    const TCIMInstance* Find(const std::string& property, const std::string& text) const;

private:
    /// The instance that has a text; null if several have.
    using TOwners = std::unordered_map<std::string, const TCIMInstance*>;

    void Enter(const std::string& property, const TCIMInstance& instance);

    std::vector<std::string> fProperties;
    std::unordered_map<std::string, TOwners> fOwners;  // by the property
};

/// Whether the two are different things: a value that counts in both collections differs.
bool AreDifferentThings(const TIdentities& before, const TCIMInstance& old, const TIdentities& after,
                        const TCIMInstance& present);

#endif
