#ifndef CLASSNAMES_H
#define CLASSNAMES_H

#include <string>
#include <vector>

class TCIMClass;
class TContainer;

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
