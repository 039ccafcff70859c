#ifndef KYR_HOST_BASE_CORELOG_H
#define KYR_HOST_BASE_CORELOG_H

#include <list>
#include <string>
#include <vector>

#include "kyr/ILogger.h"

/// One line of the core's log.
struct TLogLine {
    bool core;  ///< logged by the core; otherwise by the plugin that was being called
    kyrLogSeverity severity;
    std::string text;
};

struct TLogOptions {
    std::string file;  ///< empty: none
    bool verbose = false;
};

/// The core's logger for the length of a command. It must exist before anything else of the core is used.
class TCoreLog {
public:
    /// Raises TCommandError if the log file cannot be written.
    explicit TCoreLog(const TLogOptions& options);
    /// Closes the log file.
    ~TCoreLog();
    TCoreLog(const TCoreLog&) = delete;
    TCoreLog& operator=(const TCoreLog&) = delete;

    /// With --verbose, prints the line on standard error, under the plugin's name if it is not the core's.
    void Print(const TLogLine& line, const std::string& plugin = "") const;
    /// Whether somebody reads more of the log than errors and warnings.
    bool IsWatched() const { return fVerbose || fIsInFile; }
    bool IsInFile() const { return fIsInFile; }

private:
    bool fVerbose;
    bool fIsInFile;
};

/// Captures the lines that are logged while it exists. What was logged before stays in the core's log; captured lines
/// leave it, whether they are taken or not.
class TLogCapture {
public:
    TLogCapture();
    ~TLogCapture();
    TLogCapture(const TLogCapture&) = delete;
    TLogCapture& operator=(const TLogCapture&) = delete;

    /// The lines that were logged since the last call.
    std::vector<TLogLine> Take();

private:
    std::list<ILogger::TLogEntry> fBefore;
};

#endif
