#include "isolation/Capabilities.h"

#include <sys/capability.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

struct TFree {
    void operator()(cap_t set) const { cap_free(set); }
};
using TCapabilities = std::unique_ptr<std::remove_pointer_t<cap_t>, TFree>;

struct TKept {
    cap_value_t capability;
    TNeeds need;  // 0: kept without a need
};

// Commands to NVMe devices take CAP_SYS_ADMIN, those to disks of other kinds CAP_SYS_RAWIO.
constexpr TKept kKept[] = {{CAP_DAC_READ_SEARCH, 0},
                           {CAP_SYS_RAWIO, eNeedsRawIo},
                           {CAP_SYS_ADMIN, eNeedsRawIo},
                           {CAP_SYS_PTRACE, eNeedsProcesses}};

bool Has(const TCapabilities& set, cap_value_t capability) {
    cap_flag_value_t value = CAP_CLEAR;
    return cap_get_flag(set.get(), capability, CAP_PERMITTED, &value) == 0 && value == CAP_SET;
}

std::vector<cap_value_t> KeptOf(const TCapabilities& present, TNeeds granted) {
    std::vector<cap_value_t> kept;
    for (const TKept& one : kKept)
        if ((one.need == 0 || (one.need & granted) != 0) && Has(present, one.capability))
            kept.push_back(one.capability);
    return kept;
}

// What programs that it starts could gain: nothing, since there are no new privileges, but the process then shows it.
// It ends behind the last capability that there is, and at once for who may not.
void DropFromBoundingSet(const std::vector<cap_value_t>& kept) {
    const auto isKept = [&](cap_value_t one) { return std::find(kept.begin(), kept.end(), one) != kept.end(); };
    for (cap_value_t one = 0; isKept(one) || cap_drop_bound(one) == 0;) ++one;
}

}  // namespace

int ReduceCapabilities(TNeeds granted) {
    const TCapabilities present(cap_get_proc()), reduced(cap_init());
    if (!present || !reduced) return errno;
    const std::vector<cap_value_t> kept = KeptOf(present, granted);
    const auto count = static_cast<int>(kept.size());
    for (const cap_flag_t flag : {CAP_PERMITTED, CAP_EFFECTIVE})
        if (count > 0 && cap_set_flag(reduced.get(), flag, count, kept.data(), CAP_SET) != 0) return errno;
    DropFromBoundingSet(kept);
    return cap_set_proc(reduced.get()) == 0 ? 0 : errno;
}
