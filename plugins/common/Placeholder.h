#ifndef KYR_PLUGINS_COMMON_PLACEHOLDER_H
#define KYR_PLUGINS_COMMON_PLACEHOLDER_H

#include <string>

/// True for texts such as "To be filled by O.E.M.", "x.x" and "0123456789", which firmware has in fields that were
/// never filled. Case, blanks and punctuation make no difference to the words among them.
bool IsPlaceholder(const std::string& text);

#endif
