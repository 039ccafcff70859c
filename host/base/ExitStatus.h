#ifndef KYR_HOST_BASE_EXITSTATUS_H
#define KYR_HOST_BASE_EXITSTATUS_H

#include <stdexcept>
#include <string>

/// What kyr tells its caller.
enum EExit {
    eExitComplete = 0,
    eExitPartial = 1,  ///< there is a result, but something failed on the way
    eExitUsage = 2,
    eExitNothing = 3,  ///< nothing could be collected or read
    eExitOutput = 4,   ///< the result could not be written
};

/// Ends the command with a message for standard error.
class TCommandError : public std::runtime_error {
public:
    TCommandError(EExit status, const std::string& text) : std::runtime_error(text), fStatus(status) {}

    EExit fStatus;
};

#endif
