#ifndef TIES_H
#define TIES_H

#include <string>
#include <unordered_map>
#include <vector>

#include "kyr/TCIMReference.h"

class TCIMInstance;
class TContainer;
struct TOptions;

/// One end of an instance of an association class.
struct TEnd {
    std::string role;
    TCIMReference reference;
    const TCIMInstance* instance;  ///< null: it was not collected
};

/// The ends in the order of their roles' names. A reference that is NULL, or names a class alone, is no end.
std::vector<TEnd> EndsOf(const TCIMInstance& association);

/// What an instance is tied to by one instance of an association class.
struct TTie {
    const TCIMInstance* association;
    std::string role;  ///< the instance's own
    TEnd other;
};

/// The ties of one instance that the filters of kyr assoc let through, those of one kind together.
/// Unlike the core's own search this lets a role count that is declared for a superclass, and no broken reference
/// elsewhere makes it fail. Raises TCommandError for a filter that names no class.
std::vector<TTie> FindTies(const TCIMInstance& instance, const TOptions& options);

/// The association instances that point to each instance, found in one walk.
class TTieIndex {
public:
    explicit TTieIndex(const TContainer& container);

    std::vector<TTie> TiesOf(const TCIMInstance& instance) const;

private:
    void Enter(const TCIMInstance* instance, const TCIMInstance* association);

    std::unordered_map<const TCIMInstance*, std::vector<const TCIMInstance*>> fAssociations;
};

#endif
