#ifndef TLOGGER_H
#define TLOGGER_H

#include <fstream>

#include "kyr/ILogger.h"

/// The core's logger. Any thread may write entries, clear the list and set the threshold; the list that GetLog gives is
/// looked at while no thread writes. The logger is made and destroyed while no other thread runs the library.
class KYR_API TLogger : public ILogger {
public:
    /// Makes the one logger, with the threshold kyrLogStatus and no file; always returns 0. Everything in the core logs
    /// without asking whether a logger is there, so a host makes it before anything else. A logger that is there
    /// already is not destroyed: delete it first, or it lives on unreachable with its file open.
    static int Initialize();
    /// The same object as TRootObject::GetCoreLogger. Null before Initialize, and after its deletion.
    static TLogger* GetInstance();

    /// For Initialize: a logger made otherwise is not the one that the core writes to.
    TLogger();
    /// Ends the log file with the line "-- ORQ Log Closed ----------------------------". A file's first line is the
    /// same with "Opened".
    ~TLogger() override;

    void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) override;
    void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const void* data, int length) override;
    std::list<TLogEntry>& GetLog() override;
    void ClearLog() override;
    void SetLogThreshold(kyrLogSeverity severity) override;
    kyrLogSeverity GetLogThreshold() override;
    void SetLogFilename(std::string name) override;

private:
    /// Appends to the list in memory, with the present time.
    void Keep(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text);
    /// Writes a line to the file. Refuses a severity that has no tag.
    void Print(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text);

    static TLogger* fgInstance;

    kyrLogSeverity fThreshold;  // read and written atomically
    std::string fFilename;      // empty: no file
    std::ofstream fStream;
    std::list<TLogEntry> fLog;
};

#endif
