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

/// Where the log goes besides the error and warning lines that a command reports.
struct TLogOptions {
    std::string file;      ///< the log file; empty: none
    bool verbose = false;  ///< print every line on standard error
};

/// Sets up the core's logger for the length of a command. Create it before using anything else of the core.
class TCoreLog {
public:
    /// Raises TCommandError if the log file cannot be written.
    explicit TCoreLog(const TLogOptions& options);
    /// Closes the log file and drops the lines that are still held.
    ~TCoreLog();
    TCoreLog(const TCoreLog&) = delete;
    TCoreLog& operator=(const TCoreLog&) = delete;

    /// With --verbose, prints the line on standard error, under the name of the plugin if the core did not log it.
    void Print(const TLogLine& line, const std::string& plugin = "") const;
    /// Whether lines below a warning are printed or written to a file; if not, they need not be passed on.
    bool IsWatched() const { return fVerbose || fDescriptor >= 0; }
    /// The descriptor through which the core writes the log file; -1: there is none. In a forked process another file
    /// can be put in its place.
    int Descriptor() const { return fDescriptor; }
    /// Adds a last line to the log file, if there is one. Returns whether the file has got all that was logged; if not,
    /// says so on standard error.
    bool Finish() const;

private:
    std::string fFile;
    bool fVerbose;
    int fDescriptor = -1;
};

/// Captures the lines that are logged while this object exists. They are removed from the core's log, whether they are
/// taken or not; lines logged before stay there.
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
