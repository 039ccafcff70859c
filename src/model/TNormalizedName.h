#ifndef KYR_MODEL_TNORMALIZEDNAME_H
#define KYR_MODEL_TNORMALIZEDNAME_H

#include <string>
#include <string_view>

/// A CIM name in the form by which everything is found: checked and in lower case. Made on the stack for a look-up, so
/// that an ordinary one allocates nothing. Refuses a malformed name with kyrStatusInvalidCIMName.
class TNormalizedName {
public:
    explicit TNormalizedName(const std::string& name);
    TNormalizedName(const TNormalizedName&) = delete;
    TNormalizedName& operator=(const TNormalizedName&) = delete;

    std::string_view View() const { return fView; }

private:
    static constexpr size_t kShort = 64;

    char fBuffer[kShort];
    std::string fLong;  // in place of the buffer where the name does not fit
    std::string_view fView;
};

#endif
