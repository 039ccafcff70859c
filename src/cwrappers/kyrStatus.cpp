#include "kyr/kyrStatus.h"

#include <ios>

#include "kyr/kyrPlugin.h"

const char* const kKYRErrorMessages[] = {
#define KYR_STATUS_TEXT(name, number) #name,
    KYR_STATUS_CODES(KYR_STATUS_TEXT)
#undef KYR_STATUS_TEXT
};

static_assert(sizeof kKYRErrorMessages / sizeof *kKYRErrorMessages == kyrStatusEnd + 1);

const char* kyrTranslateStatusCode(int32_t code) {
    return kKYRErrorMessages[code < 0 || code > kyrStatusEnd ? kyrStatusEnd : code];
}

void CoreInit() {}

namespace {

/// Runs when the library is loaded.
const struct TLoader {
    TLoader() { CoreInit(); }
    std::ios_base::Init fStreams;
} kLoader;

}  // namespace
