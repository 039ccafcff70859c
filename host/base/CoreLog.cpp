#include "base/CoreLog.h"

#include <utility>

#include "base/ExitStatus.h"
#include "base/Output.h"
#include "kyr/TKYRException.h"
#include "kyr/TLogger.h"
#include "kyr/TRootObject.h"

namespace {

constexpr const char* kSeverityNames[] = {"error", "warning", "status", "debug"};

std::list<ILogger::TLogEntry>& Entries() { return TRootObject::GetCoreLogger()->GetLog(); }

}  // namespace

TCoreLog::TCoreLog(const TLogOptions& options) : fVerbose(options.verbose), fIsInFile(!options.file.empty()) {
    TLogger::Initialize();
    ILogger& logger = *TRootObject::GetCoreLogger();
    logger.SetLogThreshold(fVerbose ? kyrLogVerbose : kyrLogDebug);
    if (!fIsInFile) return;
    try {
        logger.SetLogFilename(options.file);
    } catch (const TKYRException& e) {
        throw TCommandError(eExitOutput, "cannot write the log '" + options.file + "': " + e.what());
    }
}

TCoreLog::~TCoreLog() {
    delete TRootObject::GetCoreLogger();
    TLogger::Initialize();  // plugins that are unloaded later may log from their destructors
}

void TCoreLog::Print(const TLogLine& line, const std::string& plugin) const {
    if (!fVerbose) return;
    const bool named = line.severity >= kyrLogError && line.severity <= kyrLogDebug;
    const std::string source = line.core ? "core" : plugin;
    PrintDiagnostic("[" + source + "] " + (named ? kSeverityNames[line.severity] : "note") + ": " + line.text);
}

TLogCapture::TLogCapture() : fBefore(std::exchange(Entries(), {})) {}

TLogCapture::~TLogCapture() { Entries() = std::move(fBefore); }

std::vector<TLogLine> TLogCapture::Take() {
    std::vector<TLogLine> lines;
    for (const ILogger::TLogEntry& entry : std::exchange(Entries(), {}))
        lines.push_back({entry.plugin == nullptr, entry.severity, entry.text});
    return lines;
}
