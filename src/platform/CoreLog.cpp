#include "platform/CoreLog.h"

#include "kyr/ILogger.h"
#include "kyr/TKYRException.h"
#include "kyr/TRootObject.h"

void LogCore(kyrLogSeverity severity, const std::string& text) {
    TRootObject::GetCoreLogger()->OutputLogEntry(nullptr, severity, text);
}

void LogAndThrow(kyrStatusCode code, const std::string& text) {
    LogCoreError(text);
    throw TKYRException(code);
}
