#ifndef SAMENAME_H
#define SAMENAME_H

#include <strings.h>

#include <string>

/// Names of classes and properties are the same in any case.
inline bool IsSameName(const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) == 0; }

/// Orders them.
struct TNameLess {
    bool operator()(const std::string& a, const std::string& b) const { return strcasecmp(a.c_str(), b.c_str()) < 0; }
};

#endif
