#ifndef VALUELINES_H
#define VALUELINES_H

#include <cstddef>
#include <string>
#include <vector>

class TCIMProperty;

/// The property's value as visible lines of at most that width. A long list is folded: its count, and how it begins;
/// with raw the value stands as it is, and whole.
std::vector<std::string> ValueLines(const TCIMProperty& property, bool raw, size_t width);

#endif
