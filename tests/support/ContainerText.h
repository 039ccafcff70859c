#ifndef CONTAINERTEXT_H
#define CONTAINERTEXT_H

#include <string>

class TContainer;

/// All that a container holds as text, exact to the bit (but for the kinds of NaN) and in its own order: two containers
/// with the same text cannot be told apart.
std::string TextOf(const TContainer& container);

#endif
