#include "inventory/Log.h"

#include <list>

#include "Exit.h"
#include "kyr/TKYRException.h"
#include "kyr/TLogger.h"
#include "kyr/TRootObject.h"
#include "text/Output.h"

namespace {

constexpr const char* kSeverityNames[] = {"error", "warning", "status", "debug"};

}  // namespace

TLog::TLog(const TSessionOptions& options) : fVerbose(options.verbose), fIsInFile(!options.log.empty()) {
    TLogger::Initialize();
    ILogger& logger = *TRootObject::GetCoreLogger();
    logger.SetLogThreshold(fVerbose ? kyrLogVerbose : kyrLogDebug);
    if (!fIsInFile) return;
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

std::vector<TLogLine> TLog::Take() {
    std::list<ILogger::TLogEntry> entries;
    entries.swap(TRootObject::GetCoreLogger()->GetLog());
    std::vector<TLogLine> lines;
    for (const ILogger::TLogEntry& entry : entries)
        lines.push_back({entry.plugin == nullptr, entry.severity, entry.text});
    return lines;
}

void TLog::Tell(const TLogLine& line, const std::string& plugin) const {
    if (!fVerbose) return;
    const bool named = line.severity >= kyrLogError && line.severity <= kyrLogDebug;
    const std::string source = line.core ? "core" : plugin;
    Complain("[" + source + "] " + (named ? kSeverityNames[line.severity] : "note") + ": " + line.text);
}
