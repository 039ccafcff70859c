#ifndef KYR_HOST_MODEL_CLASSNAMES_H
#define KYR_HOST_MODEL_CLASSNAMES_H

#include <strings.h>

#include <string>
#include <vector>

class TCIMClass;
class TContainer;

/// Names of classes and properties are the same in any case.
inline bool IsSameName(const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) == 0; }

/// Orders them.
struct TNameLess {
    bool operator()(const std::string& a, const std::string& b) const { return strcasecmp(a.c_str(), b.c_str()) < 0; }
};

/// The class of that name in any case. Raises TCommandError that names the nearest ones.
TCIMClass& GetClassNamed(const TContainer& schema, const std::string& name);

/// The named classes with all below them, ordinary classes before associations, each in the order of their names. No
/// name stands for every class but those that tell how complete the collection is. Raises TCommandError.
std::vector<TCIMClass*> SelectClasses(const TContainer& schema, const std::vector<std::string>& names);

/// The class itself, if it is an association, and the associations below it, in the order of their names.
std::vector<TCIMClass*> AssociationsOf(TCIMClass& cls);

std::vector<std::string> NamesOf(const std::vector<TCIMClass*>& classes);

/// In the order of their names, whatever their case.
void SortByName(std::vector<TCIMClass*>& classes);

#endif
