#ifndef UNAVAILABLEVALUES_H
#define UNAVAILABLEVALUES_H

#include <string>

class TCIMClass;

/// The first few of the values that instances of the class should have and could not be read, as their property
/// UnavailableValues tells, and how many more there are. What a machine does not have is none of them.
std::string TellUnavailableValues(const TCIMClass& cls);

#endif
