#ifndef KYR_PLATFORM_CORELOG_H
#define KYR_PLATFORM_CORELOG_H

#include <string>

#include "kyr/kyrLog.h"
#include "kyr/kyrStatus.h"

/// Writes a line of the core's own to the core logger.
void LogCore(kyrLogSeverity severity, const std::string& text);

inline void LogCoreError(const std::string& text) { LogCore(kyrLogError, text); }

/// The usual end of a refused operation: an error line, then the exception.
[[noreturn]] void LogAndThrow(kyrStatusCode code, const std::string& text);

#endif
