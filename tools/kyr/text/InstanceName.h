#ifndef INSTANCENAME_H
#define INSTANCENAME_H

#include <string>

class TCIMInstance;

/// What a person may recognise the instance by, as one visible line: its caption or a name, or else its keys.
std::string NameForPeople(const TCIMInstance& instance);

/// Its object path as one visible line.
std::string VisiblePath(const TCIMInstance& instance);

#endif
