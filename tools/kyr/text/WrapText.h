#ifndef WRAPTEXT_H
#define WRAPTEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// How many columns a visible text takes on a terminal.
size_t ColumnsOf(std::string_view visible);

/// The lines of a visible text, none of them wider than told: broken at blanks, which go, or inside a word that is too
/// long for a line. At least one line.
std::vector<std::string> WrapText(std::string_view visible, size_t width);

#endif
