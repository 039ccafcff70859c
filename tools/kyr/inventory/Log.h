#ifndef LOG_H
#define LOG_H

#include <vector>

#include "command/Options.h"
#include "states/State.h"

/// The core's log for the length of a command. It must be there before anything else of the core is used.
class TLog {
public:
    /// Raises TCommandError if the log file cannot be written.
    explicit TLog(const TSessionOptions& options);
    /// Ends the log file.
    ~TLog();
    TLog(const TLog&) = delete;
    TLog& operator=(const TLog&) = delete;

    /// What was logged since the last call.
    static std::vector<TLogLine> Take();
    /// With --verbose, tells the line on standard error, under the plugin's name if it is not the core's.
    void Tell(const TLogLine& line, const std::string& plugin = "") const;
    /// Somebody reads more of it than errors and warnings.
    bool IsWatched() const { return fVerbose || fIsInFile; }
    bool IsInFile() const { return fIsInFile; }

private:
    bool fVerbose;
    bool fIsInFile;
};

#endif
