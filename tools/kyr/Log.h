#ifndef LOG_H
#define LOG_H

#include <list>

#include "Options.h"
#include "kyr/ILogger.h"

/// The core's log for the length of a command. It must be there before anything else of the core is used.
class TLog {
public:
    /// Raises TCommandError if the log file cannot be written.
    explicit TLog(const TSessionOptions& options);
    /// Ends the log file.
    ~TLog();
    TLog(const TLog&) = delete;
    TLog& operator=(const TLog&) = delete;

    /// What was logged since the last call. With --verbose it is told on standard error.
    std::list<ILogger::TLogEntry> Take() const;

private:
    bool fVerbose;
};

#endif
