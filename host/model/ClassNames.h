#ifndef KYR_HOST_MODEL_CLASSNAMES_H
#define KYR_HOST_MODEL_CLASSNAMES_H

#include <strings.h>

#include <string>
#include <unordered_set>
#include <vector>

class TCIMClass;
class TCIMPropertyDecl;
class TContainer;

/// CIM compares the names of classes and properties without regard to case.
inline bool IsSameName(const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) == 0; }

/// Sorts names without regard to case.
struct TNameLess {
    bool operator()(const std::string& a, const std::string& b) const { return strcasecmp(a.c_str(), b.c_str()) < 0; }
};

/// The classes that say how complete a collection is. A set, because asking each of many classes whether it is a
/// subclass of theirs takes time for every class above it.
std::unordered_set<const TCIMClass*> StateClasses(const TContainer& schema);

/// Null if there is none, also for a name that no class can have.
TCIMClass* FindClassNamed(const TContainer& schema, const std::string& name);

/// The class that the name means, also a spoken one (SpokenNames.h). Raises TCommandError for an unknown class, with
/// the names of similar ones.
TCIMClass& GetClassNamed(const TContainer& schema, const std::string& name);
[[noreturn]] void RefuseUnknownClass(const TContainer& schema, const std::string& name);

/// All classes except those of collection states, arranged.
std::vector<TCIMClass*> SelectAllClasses(const TContainer& schema);
/// Leaves each class once: first the ordinary classes by name, then the associations by name.
void ArrangeClasses(std::vector<TCIMClass*>& classes);

/// Null if the class has no such property.
const TCIMPropertyDecl* FindPropertyNamed(const TCIMClass& cls, const std::string& name);
/// The name of the property as one of the classes declares it. Raises TCommandError if none does, with the names of
/// similar ones.
std::string GetPropertyNamed(const std::vector<TCIMClass*>& classes, const std::string& name);

/// What the classes declare or inherit, each name once.
std::vector<std::string> PropertyNamesOf(const std::vector<TCIMClass*>& classes);

/// The class and all its subclasses.
std::vector<TCIMClass*> WithSubClasses(TCIMClass& cls);

/// The associations among the class and all its subclasses, sorted by name.
std::vector<TCIMClass*> AssociationsOf(TCIMClass& cls);

std::vector<std::string> NamesOf(const std::vector<TCIMClass*>& classes);

void SortByName(std::vector<TCIMClass*>& classes);

#endif
