#ifndef TKYREXCEPTION_H
#define TKYREXCEPTION_H

#include <exception>

#include "kyr/kyrStatus.h"

/// The one exception of the core: a status code and nothing more. Details of a failure are in the log.
class KYR_API TKYRException : public std::exception {
public:
    explicit TKYRException(kyrStatusCode code) : fCode(code) {}
    TKYRException(const TKYRException&) = default;
    TKYRException& operator=(const TKYRException&) = default;
    ~TKYRException() override;

    /// The code's text, as kyrTranslateStatusCode gives it: static, never to be freed.
    const char* what() const noexcept override;

    kyrStatusCode fCode;
};

#endif
