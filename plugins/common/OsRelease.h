#ifndef KYR_PLUGINS_COMMON_OSRELEASE_H
#define KYR_PLUGINS_COMMON_OSRELEASE_H

#include <string>

#include "SystemRoot.h"

/// The content of /etc/os-release, or of /usr/lib/os-release if there is none; where neither is there, what an older
/// file such as /etc/redhat-release tells, in the same form.
TFact<std::string> ReadOsReleaseFile(const TSystemRoot& root);
/// The value of the last line "KEY=value" in that content, without quotes; not present if it is empty.
TFact<std::string> FindOsReleaseValue(const TFact<std::string>& file, const std::string& key);

#endif
