#ifndef KYR_HOST_MODEL_ASSOCIATIONS_H
#define KYR_HOST_MODEL_ASSOCIATIONS_H

#include <string>
#include <unordered_map>
#include <vector>

#include "kyr/TCIMReference.h"

class TCIMInstance;
class TContainer;

/// One end of an instance of an association class.
struct TAssociationEnd {
    std::string role;
    TCIMReference reference;
    const TCIMInstance* instance;  ///< null: it was not collected
};

/// The ends in the order of their roles' names. A reference that is NULL, or names a class alone, is no end.
std::vector<TAssociationEnd> EndsOf(const TCIMInstance& association);

/// What an instance is tied to by one instance of an association class.
struct TAssociationLink {
    const TCIMInstance* association;
    std::string role;  ///< the instance's own
    TAssociationEnd other;
};

/// Which links are wanted. An empty name lets everything through.
struct TAssociationFilter {
    std::string assocClass;
    std::string resultClass;
    std::string role;
    std::string resultRole;
};

/// The links of one instance that the filter lets through, those of one kind together.
/// Unlike the core's own search this lets a role count that is declared for a superclass, and no broken reference
/// elsewhere makes it fail. Raises TCommandError for a filter that names no class.
std::vector<TAssociationLink> FindLinks(const TCIMInstance& instance, const TAssociationFilter& filter);

/// The association instances that point to each instance, found in one walk.
class TAssociationIndex {
public:
    explicit TAssociationIndex(const TContainer& container);

    std::vector<TAssociationLink> LinksOf(const TCIMInstance& instance) const;

private:
    void Enter(const TCIMInstance* instance, const TCIMInstance* association);

    std::unordered_map<const TCIMInstance*, std::vector<const TCIMInstance*>> fAssociations;
};

#endif
