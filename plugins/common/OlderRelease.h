#ifndef KYR_PLUGINS_COMMON_OLDERRELEASE_H
#define KYR_PLUGINS_COMMON_OLDERRELEASE_H

#include <string>

#include "SystemRoot.h"

/// What distributions without os-release tell of themselves, each in a file of its own form, in the form of os-release.
/// The source is that file.
TFact<std::string> ReadOlderRelease(const TSystemRoot& root);

#endif
