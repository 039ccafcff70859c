#ifndef KYR_HOST_MODEL_ASSOCIATIONS_H
#define KYR_HOST_MODEL_ASSOCIATIONS_H

#include <string>
#include <unordered_map>
#include <vector>

#include "kyr/TCIMReference.h"

class TCIMInstance;
class TContainer;

/// One reference of an association instance: the role is the name of the reference property.
struct TAssociationEnd {
    std::string role;
    TCIMReference reference;
    const TCIMInstance* instance;  ///< what it refers to; null: that was not collected
};

/// The ends of an association instance, sorted by role. References that are NULL or name a class without keys are left
/// out.
std::vector<TAssociationEnd> EndsOf(const TCIMInstance& association);

/// The index of the end that the others belong to or depend on: the first one in the role GroupComponent or Antecedent,
/// or else the first. There must be an end.
size_t OwnerAmong(const TCIMInstance& association, const std::vector<TAssociationEnd>& ends);

/// A link from one instance to another through an association instance.
struct TAssociationLink {
    const TCIMInstance* association;
    std::string role;       ///< of the instance that the link was asked for
    TAssociationEnd other;  ///< what it is linked to
};

/// Which links are wanted, in the terms of the CIM operation Associators. An empty name filters nothing.
struct TAssociationFilter {
    std::string assocClass;   ///< of the association, or a superclass of it
    std::string resultClass;  ///< of the linked instance, or a superclass of it
    std::string role;         ///< of the instance that is asked for
    std::string resultRole;   ///< of the linked instance
};

/// The links of an instance that pass the filter, sorted by association class and roles. Differs from the core's own
/// search in two ways: roles that a superclass declares count too, and a reference that cannot be resolved does not
/// make the whole search fail. Raises TCommandError if the filter names an unknown class or role.
std::vector<TAssociationLink> FindLinks(const TCIMInstance& instance, const TAssociationFilter& filter);

/// An index of all association instances by the instances that they refer to. It is for finding the links of many
/// instances: FindLinks walks all associations for each.
class TAssociationIndex {
public:
    explicit TAssociationIndex(const TContainer& container);

    std::vector<TAssociationLink> LinksOf(const TCIMInstance& instance) const;

private:
    void Add(const TCIMInstance* instance, const TCIMInstance* association);

    std::unordered_map<const TCIMInstance*, std::vector<const TCIMInstance*>> fAssociations;
};

#endif
