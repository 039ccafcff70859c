#ifndef KYR_PLUGINS_COMMON_PLACEHOLDER_H
#define KYR_PLUGINS_COMMON_PLACEHOLDER_H

#include <string>

/// True for texts such as "To be filled by O.E.M.", which firmware has in fields that were never filled. Ignores case.
bool IsPlaceholder(const std::string& text);

#endif
