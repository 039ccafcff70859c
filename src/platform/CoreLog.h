#ifndef KYR_PLATFORM_CORELOG_H
#define KYR_PLATFORM_CORELOG_H

#include <string>

#include "kyr/kyrLog.h"
#include "kyr/kyrStatus.h"

/// Logs a message of the core itself.
void LogCore(kyrLogSeverity severity, const std::string& text);

inline void LogCoreError(const std::string& text) { LogCore(kyrLogError, text); }

/// Logs an error and raises TKYRException.
[[noreturn]] void LogAndThrow(kyrStatusCode code, const std::string& text);

#endif
