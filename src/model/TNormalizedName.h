#ifndef KYR_MODEL_TNORMALIZEDNAME_H
#define KYR_MODEL_TNORMALIZEDNAME_H

#include <string>
#include <string_view>

/// A CIM name in lower case, the form in which names are stored and compared. It lives on the stack, so that a look-up
/// does not allocate. Raises kyrStatusInvalidCIMName for a malformed name.
class TNormalizedName {
public:
    explicit TNormalizedName(std::string_view name);
    TNormalizedName(const TNormalizedName&) = delete;
    TNormalizedName& operator=(const TNormalizedName&) = delete;

    std::string_view View() const { return fView; }
    /// False if the host's locale treats ASCII otherwise than the C locale does. A Turkish one makes another letter of
    /// I.
    static bool IsUsualLocale();

private:
    static constexpr size_t kShort = 64;

    char fBuffer[kShort];
    std::string fLong;  // used instead of the buffer for a longer name
    std::string_view fView;
};

/// A name that the core itself looks for, and what TNormalizedName makes of it in the usual locale.
struct TLiteralName {
    const char* written;
    std::string_view normalized;
};

#endif
