#ifndef KYR_HOST_CHECK_UNITS_H
#define KYR_HOST_CHECK_UNITS_H

#include <string>
#include <vector>

/// Empty for a unit that the display scales, that CIM schemas use, or that may be a name of things that are counted.
/// For one that most likely is misspelt: what to write in its place.
std::string RemedyForUnit(const std::string& unit);

/// The unit that a name ends in, given as its words in lower case, if Units says another one; empty otherwise.
std::string UnitInName(const std::vector<std::string>& words, const std::string& unit);

#endif
