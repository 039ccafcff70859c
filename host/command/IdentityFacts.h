#ifndef KYR_HOST_COMMAND_IDENTITYFACTS_H
#define KYR_HOST_COMMAND_IDENTITYFACTS_H

#include <string>
#include <vector>

#include "json/Json.h"

class TContainer;

/// The names of the facts of kyr identity, as in JSON.
std::vector<std::string> FactNames();
/// The classes in which they stand.
std::vector<std::string> ClassesOfFacts();
/// The fact of that name, which must be one of them.
TIdentityFact GetFact(const std::string& name, TContainer& container);

#endif
