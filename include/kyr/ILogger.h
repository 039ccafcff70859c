#ifndef ILOGGER_H
#define ILOGGER_H

#include <list>
#include <string>

#include "kyr/TCIMDateTime.h"
#include "kyr/kyrExport.h"
#include "kyr/kyrLog.h"

class IPlugin;

/// The log of the core and its plugins: a list in memory, and a file if the host names one.
class KYR_API ILogger {
public:
    /// One entry of the list in memory.
    struct TLogEntry {
        /// Who logged; null for the core. Borrowed: it dangles once the plugin manager is gone.
        const IPlugin* plugin;
        /// As it was given to OutputLogEntry, so kyrLogMemoryOnly among them.
        kyrLogSeverity severity;
        /// The message without the prefix and tag of a printed line; of a data entry, its hexadecimal dump.
        std::string text;
        /// When the entry was made, by TOSSpecific::GetLocalTime. A printed line carries no time.
        TCIMDateTime time;
    };

    virtual ~ILogger();

    /// Logs a text under the plugin's name, or the core's if plugin is null. The plugin is asked for its name at each
    /// printed line. Entries graver than kyrLogVerbose are kept in memory; kyrLogMemoryOnly is kept whatever the
    /// threshold, and never printed. A severity outside kyrLogSeverity that passes the threshold raises kyrStatusFail;
    /// a negative one has then been kept in memory.
    ///
    /// A line of the log file is "KYR_", then "Core: " or the plugin's name and ": ", then one of "[Error] ",
    /// "[Warning] ", "[Status] ", "[Debug] " and "[Verbose] ", then the text. Line ends in the text are not escaped.
    virtual void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) = 0;
    /// Logs length bytes as hexadecimal text: two small digits and a blank for each. More than 10240 bytes are refused
    /// with an error of the core in their place, "Too much data to log--10k limit!", whatever the severity. Here
    /// kyrLogMemoryOnly stores nothing: see docs/oddities.md.
    virtual void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const void* data, int length) = 0;
    /// The entries kept in memory, oldest first: the list itself. It grows until ClearLog, without a limit.
    virtual std::list<TLogEntry>& GetLog() = 0;
    /// Empties the list in memory; the file keeps what it has.
    virtual void ClearLog() = 0;
    /// Entries of a severity number above the threshold are dropped: neither kept nor printed.
    virtual void SetLogThreshold(kyrLogSeverity severity) = 0;
    /// kyrLogStatus, until another one is set.
    virtual kyrLogSeverity GetLogThreshold() = 0;
    /// Opens the log file, emptying one that exists, and writes its opening line. Without a file nothing is printed.
    /// Raises kyrStatusAccessDenied or kyrStatusFileSystemError; lines that follow are then lost without a complaint.
    /// A second call while a file is open fails in the same way, and ends the writing to the first file. Each line is
    /// flushed, and a full disk is not noticed.
    virtual void SetLogFilename(std::string name) = 0;
};

#endif
