/* A plugin whose data entry fails, as the environment says: with that status, or with an exception of that text. */
#include <cstdlib>
#include <stdexcept>

#include "testplugin.h"

static kyrStatusCode Init(kyrPluginHandle /*plugin*/) { return kyrStatusOK; }

static kyrStatusCode GetData(kyrPluginHandle /*plugin*/, kyrIOHandle handle, const char** classNames,
                             uint32_t /*count*/) {
    Add(handle, classNames[0], "1");
    if (const char* const status = std::getenv("KYR_TEST_STATUS")) return static_cast<kyrStatusCode>(std::atoi(status));
    throw std::runtime_error(std::getenv("KYR_TEST_EXCEPTION"));
}

__attribute__((constructor)) static void Load() { Register(); }
