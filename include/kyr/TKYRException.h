#ifndef TKYREXCEPTION_H
#define TKYREXCEPTION_H

#include <exception>

#include "kyr/kyrStatus.h"

/// The one exception of the core: a status code and nothing more. Details of a failure are in the log, in the line
/// that was written before the throw. Standard exceptions that pass through, such as std::bad_alloc, stay what they
/// are.
///
/// It crosses the library's border: catch it by reference, and build with exceptions and run-time type information.
class KYR_API TKYRException : public std::exception {
public:
    /// With the code, and with no text of its own.
    explicit TKYRException(kyrStatusCode code) : fCode(code) {}
    /// @{
    /// A copy has the same code.
    TKYRException(const TKYRException&) = default;
    TKYRException& operator=(const TKYRException&) = default;
    /// @}
    ~TKYRException() override;

    /// The code's text, as kyrTranslateStatusCode gives it: static, never to be freed.
    const char* what() const noexcept override;

    /// Read it directly. It may be a number outside kyrStatusCode if it is what a plugin's entry has returned.
    kyrStatusCode fCode;
};

#endif
