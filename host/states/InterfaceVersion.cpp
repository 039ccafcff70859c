#include "states/InterfaceVersion.h"

#include <charconv>

#include "base/Text.h"
#include "kyr/kyrPlugin.h"
#include "model/Reason.h"

namespace {

constexpr size_t kLongest = 20;

}  // namespace

EFit FitOf(const std::string& version) {
    const char* const end = version.data() + version.size();
    unsigned major = 0, minor = 0;
    const auto atDot = std::from_chars(version.data(), end, major);
    if (atDot.ec != std::errc() || atDot.ptr == end || *atDot.ptr != '.') return EFit::eUnknown;
    const auto behind = std::from_chars(atDot.ptr + 1, end, minor);
    if (behind.ec != std::errc() || behind.ptr != end || major < KYR_INTERFACE_MAJOR) return EFit::eUnknown;
    if (major > KYR_INTERFACE_MAJOR) return EFit::eNewerMajor;
    return minor > KYR_INTERFACE_MINOR ? EFit::eNewerMinor : EFit::eFits;
}

std::string DoubtAbout(const std::string& version) {
    switch (FitOf(version)) {
        case EFit::eNewerMinor:
            return SentenceOf(ReasonFor(EReason::eInterfaceTooNew, CutText(version, kLongest)));
        case EFit::eUnknown:
            if (version.empty()) return "it does not say for which version of the plugin interface it was built";
            return "'" + CutText(version, kLongest) +
                   "', for which it was built, is no version of the plugin interface";
        default:
            return "";
    }
}
