#ifndef CLASSNAMES_H
#define CLASSNAMES_H

#include <string>
#include <vector>

class TCIMClass;
class TContainer;

/// The class of that name in any case. Raises TCommandError that names the nearest ones.
TCIMClass& GetClassNamed(const TContainer& schema, const std::string& name);

/// In the order of their names, whatever their case.
void SortByName(std::vector<TCIMClass*>& classes);

#endif
