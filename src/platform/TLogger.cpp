#include "kyr/TLogger.h"

#include <cerrno>
#include <mutex>
#include <utility>

#include "kyr/IPlugin.h"
#include "kyr/IPluginCallbacks.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"

namespace {

constexpr int kMaxDataLength = 10240;
constexpr const char* kTags[] = {"[Error] ", "[Warning] ", "[Status] ", "[Debug] ", "[Verbose] "};

// Containers on several threads write to one logger. Plugins are asked for their names without it: they may log too.
std::mutex gMutex;
using TLock = std::lock_guard<std::mutex>;

// The field is no std::atomic, because programs of the first release know it as a plain one.
kyrLogSeverity Load(const kyrLogSeverity& threshold) {
    kyrLogSeverity severity = kyrLogError;
    __atomic_load(&threshold, &severity, __ATOMIC_RELAXED);
    return severity;
}

std::string Source(const IPlugin* plugin) { return plugin ? plugin->GetCallbacks()->GetName() + ": " : "Core: "; }

const char* Tag(kyrLogSeverity severity) {
    if (severity < kyrLogError || severity > kyrLogVerbose) throw TKYRException(kyrStatusFail);
    return kTags[severity];
}

std::string Dump(const void* data, int length) {
    constexpr char digits[] = "0123456789abcdef";
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    std::string text;
    for (int i = 0; i < length; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
        text += ' ';
    }
    return text;
}

}  // namespace

ILogger::~ILogger() = default;

TLogger* TLogger::fgInstance = nullptr;

int TLogger::Initialize() {
    fgInstance = new TLogger;
    return 0;
}

TLogger* TLogger::GetInstance() { return fgInstance; }

TLogger::TLogger() : fThreshold(kyrLogStatus) {}

TLogger::~TLogger() {
    if (fgInstance == this) fgInstance = nullptr;
    if (fFilename.empty()) return;
    fStream << "-- ORQ Log Closed ----------------------------" << std::endl;
    fStream.close();
}

void TLogger::OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) {
    if (severity > Load(fThreshold) && severity != kyrLogMemoryOnly) return;
    if (severity < kyrLogVerbose || severity == kyrLogMemoryOnly) Keep(plugin, severity, text);
    if (severity != kyrLogMemoryOnly) Print(plugin, severity, text);
}

void TLogger::OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const void* data, int length) {
    if (length > kMaxDataLength) return OutputLogEntry(nullptr, kyrLogError, "Too much data to log--10k limit!");
    if (severity > Load(fThreshold) || severity == kyrLogMemoryOnly) return;
    const std::string text = Dump(data, length);
    if (severity < kyrLogVerbose) Keep(plugin, severity, text);
    Print(plugin, severity, text);
}

std::list<ILogger::TLogEntry>& TLogger::GetLog() { return fLog; }
void TLogger::ClearLog() {
    const TLock lock(gMutex);
    fLog.clear();
}
void TLogger::SetLogThreshold(kyrLogSeverity severity) { __atomic_store(&fThreshold, &severity, __ATOMIC_RELAXED); }
kyrLogSeverity TLogger::GetLogThreshold() { return Load(fThreshold); }

void TLogger::SetLogFilename(std::string name) {
    const TLock lock(gMutex);
    fFilename = name;
    fStream.open(name, std::ios::out | std::ios::ate);
    if (!fStream) throw TKYRException(errno == EACCES ? kyrStatusAccessDenied : kyrStatusFileSystemError);
    fStream << "-- ORQ Log Opened ----------------------------" << std::endl;
}

void TLogger::Keep(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) {
    TLogEntry entry{plugin, severity, text, TOSSpecific::GetLocalTime()};
    const TLock lock(gMutex);
    fLog.push_back(std::move(entry));
}

void TLogger::Print(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) {
    std::string line = "KYR_" + Source(plugin);
    line += Tag(severity);
    line += text;
    line += '\n';
    const TLock lock(gMutex);
    if (fFilename.empty()) return TOSSpecific::OutputLogString(line);
    fStream << line << std::flush;
}
