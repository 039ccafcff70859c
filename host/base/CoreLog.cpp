#include "base/CoreLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/Descriptor.h"
#include "base/ExitStatus.h"
#include "base/Output.h"
#include "base/StatusWords.h"
#include "kyr/TKYRException.h"
#include "kyr/TLogger.h"
#include "kyr/TRootObject.h"

namespace {

constexpr const char* kSeverityNames[] = {"error", "warning", "status", "debug"};

std::list<ILogger::TLogEntry>& Entries() { return TRootObject::GetCoreLogger()->GetLog(); }

[[noreturn]] void FailToWrite(const std::string& file, const std::string& reason) {
    throw TCommandError(eExitOutput, "cannot write the log '" + file + "': " + reason);
}

// The core does not tell whether it could write a line, so one is written before. The core empties the file when it
// opens it. A pipe or a terminal would show the line.
void TryToWrite(const std::string& file) {
    const TDescriptor log(open(file.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666));
    struct stat status {};
    if (fstat(log.Number(), &status) != 0 || isatty(log.Number()) != 0) return;  // the core tells why it cannot open it
    if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode)) return;
    if (write(log.Number(), "\n", 1) != 1) FailToWrite(file, std::strerror(errno));
}

off_t SizeOf(const std::string& file) {
    struct stat status {};
    return stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

// The one that the next file to be opened gets. The core does not tell which its log file has.
int NextDescriptor() {
    const TDescriptor probe(dup(STDERR_FILENO));
    return probe.Number();
}

}  // namespace

TCoreLog::TCoreLog(const TLogOptions& options) : fFile(options.file), fVerbose(options.verbose) {
    TLogger::Initialize();
    ILogger& logger = *TRootObject::GetCoreLogger();
    logger.SetLogThreshold(fVerbose ? kyrLogVerbose : kyrLogDebug);
    if (fFile.empty()) return;
    TryToWrite(fFile);
    fDescriptor = NextDescriptor();
    try {
        logger.SetLogFilename(fFile);
    } catch (const TKYRException& e) {
        FailToWrite(fFile, WithStatusInWords(e.what()));
    }
}

TCoreLog::~TCoreLog() {
    delete TRootObject::GetCoreLogger();
    TLogger::Initialize();  // plugins that are unloaded later may log from their destructors
}

// The core writes nothing more to a file once it could not write a line.
bool TCoreLog::Finish() const {
    if (fDescriptor < 0) return true;
    const off_t before = SizeOf(fFile);
    const TLogCapture capture;
    TRootObject::GetCoreLogger()->OutputLogEntry(nullptr, kyrLogDebug, "Done");
    if (before < 0 || SizeOf(fFile) > before) return true;
    PrintDiagnostic("cannot write the log '" + fFile + "': only the first " + std::to_string(before) +
                    " bytes of it could be written");
    return false;
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
