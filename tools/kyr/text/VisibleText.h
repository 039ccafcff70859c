#ifndef VISIBLETEXT_H
#define VISIBLETEXT_H

#include <string>
#include <string_view>

/// The text as one line that can do a terminal no harm: control characters, characters that reorder or hide text, and
/// bytes that are no UTF-8 are written as escapes.
std::string VisibleText(std::string_view text);

/// The text with only those bytes as escapes that are no UTF-8.
std::string ValidText(std::string_view text);

/// Beyond ASCII: a control character, or one that reorders or hides text.
bool IsHiddenCharacter(unsigned int point);
/// As "\u202E".
std::string EscapedCharacter(unsigned int point);

#endif
