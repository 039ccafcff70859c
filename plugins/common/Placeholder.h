#ifndef KYR_PLUGINS_COMMON_PLACEHOLDER_H
#define KYR_PLUGINS_COMMON_PLACEHOLDER_H

#include <string>

/// Whether a text is one of those that makers leave in fields of the firmware that they did not fill. Compared without
/// regard to case.
bool IsPlaceholder(const std::string& text);

#endif
