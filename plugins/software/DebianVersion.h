#ifndef KYR_PLUGINS_SOFTWARE_DEBIANVERSION_H
#define KYR_PLUGINS_SOFTWARE_DEBIANVERSION_H

#include <string_view>

/// Whether the first version is older, in the order of Debian's policy.
bool IsOlderVersion(std::string_view a, std::string_view b);

#endif
