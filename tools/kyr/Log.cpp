#include "Log.h"

#include "Exit.h"
#include "Output.h"
#include "Session.h"
#include "kyr/TKYRException.h"
#include "kyr/TLogger.h"
#include "kyr/TRootObject.h"

namespace {

constexpr const char* kSeverityNames[] = {"error", "warning", "status", "debug"};

void TellEntry(const ILogger::TLogEntry& entry) {
    const std::string source = entry.plugin == nullptr ? "core" : TSession::NameOf(*entry.plugin);
    const bool named = entry.severity >= kyrLogError && entry.severity <= kyrLogDebug;
    Complain("[" + source + "] " + (named ? kSeverityNames[entry.severity] : "note") + ": " + entry.text);
}

}  // namespace

TLog::TLog(const TSessionOptions& options) : fVerbose(options.verbose) {
    TLogger::Initialize();
    ILogger& logger = *TRootObject::GetCoreLogger();
    logger.SetLogThreshold(fVerbose ? kyrLogVerbose : kyrLogDebug);
    if (options.log.empty()) return;
    try {
        logger.SetLogFilename(options.log);
    } catch (const TKYRException& e) {
        throw TCommandError(eExitOutput, "cannot write the log '" + options.log + "': " + e.what());
    }
}

TLog::~TLog() {
    delete TRootObject::GetCoreLogger();
    TLogger::Initialize();  // plugins may log from destructors of their own
}

std::list<ILogger::TLogEntry> TLog::Take() const {
    std::list<ILogger::TLogEntry> entries;
    entries.swap(TRootObject::GetCoreLogger()->GetLog());
    if (fVerbose)
        for (const ILogger::TLogEntry& entry : entries) TellEntry(entry);
    return entries;
}
