#ifndef VISIBLETEXT_H
#define VISIBLETEXT_H

#include <string>
#include <string_view>

/// The text as one line that can do a terminal no harm: control characters, characters that reorder or hide text, and
/// bytes that are no UTF-8 are written as escapes.
std::string VisibleText(std::string_view text);

#endif
