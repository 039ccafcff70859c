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
    struct TLogEntry {
        const IPlugin* plugin;  ///< who logged; null for the core. Borrowed: dangles once the plugin manager is gone.
        kyrLogSeverity severity;
        std::string text;  ///< the message alone; of a data entry, its hexadecimal dump
        TCIMDateTime time;
    };

    virtual ~ILogger();

    /// Logs a text under the plugin's name, or the core's if plugin is null. Entries graver than kyrLogVerbose are
    /// kept in memory; kyrLogMemoryOnly is kept whatever the threshold, and never printed. A severity outside
    /// kyrLogSeverity that passes the threshold raises kyrStatusFail.
    virtual void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) = 0;
    /// Logs length bytes as hexadecimal text. More than 10240 bytes are refused with an error line of the core.
    /// Here kyrLogMemoryOnly stores nothing.
    virtual void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const void* data, int length) = 0;
    /// The entries kept in memory, oldest first: the list itself. It grows until ClearLog.
    virtual std::list<TLogEntry>& GetLog() = 0;
    virtual void ClearLog() = 0;
    /// Entries of a severity number above the threshold are dropped.
    virtual void SetLogThreshold(kyrLogSeverity severity) = 0;
    virtual kyrLogSeverity GetLogThreshold() = 0;
    /// Opens the log file, emptying one that exists. Raises kyrStatusAccessDenied or kyrStatusFileSystemError. A
    /// second call while a file is open fails, and ends the writing.
    virtual void SetLogFilename(std::string name) = 0;
};

#endif
