#ifndef TLOGGER_H
#define TLOGGER_H

#include <fstream>

#include "kyr/ILogger.h"

/// The core's logger.
class KYR_API TLogger : public ILogger {
public:
    /// Makes the one logger, with the threshold kyrLogStatus and no file; returns 0. A logger that is there already
    /// is not destroyed: delete it first.
    static int Initialize();
    /// Null before Initialize.
    static TLogger* GetInstance();

    TLogger();
    /// Ends the log file with its closing line.
    ~TLogger() override;

    void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text) override;
    void OutputLogEntry(const IPlugin* plugin, kyrLogSeverity severity, const void* data, int length) override;
    std::list<TLogEntry>& GetLog() override;
    void ClearLog() override;
    void SetLogThreshold(kyrLogSeverity severity) override;
    kyrLogSeverity GetLogThreshold() override;
    void SetLogFilename(std::string name) override;

private:
    void Keep(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text);
    void Print(const IPlugin* plugin, kyrLogSeverity severity, const std::string& text);

    static TLogger* fgInstance;

    kyrLogSeverity fThreshold;
    std::string fFilename;  // empty: no file
    std::ofstream fStream;
    std::list<TLogEntry> fLog;
};

#endif
