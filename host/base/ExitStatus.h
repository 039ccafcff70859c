#ifndef KYR_HOST_BASE_EXITSTATUS_H
#define KYR_HOST_BASE_EXITSTATUS_H

#include <stdexcept>
#include <string>

/// The exit statuses of kyr. Scripts depend on the numbers.
enum EExit {
    eExitComplete = 0,
    eExitPartial = 1,  ///< there is a result, but something failed on the way
    eExitUsage = 2,    ///< the arguments are wrong
    eExitNothing = 3,  ///< nothing could be collected or read
    eExitOutput = 4,   ///< the result could not be written
};

/// Thrown to end the command with an exit status; what() is printed on standard error, unless it is empty.
class TCommandError : public std::runtime_error {
public:
    TCommandError(EExit status, const std::string& text) : std::runtime_error(text), fStatus(status) {}

    EExit fStatus;
};

#endif
