/* The plugin "system": what the machine is and what runs on it. */
#include <stdlib.h>

#include "facts.h"
#include "kyr/kyrPlugin.h"
#include "reporter.h"

/* Names a folder to read in place of "/", such as a copy of another machine's files. */
static const char kRootVariable[] = "KYR_SYSTEM_ROOT";

static kyrPluginHandle gPlugin;

static kyrStatusCode Nothing(kyrPluginHandle plugin) {
    (void)plugin;
    return kyrStatusOK;
}

static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    (void)plugin;
    SystemFacts facts;
    ReadSystemFacts(getenv(kRootVariable), &facts);
    kyrStatusCode status = facts.hostName == NULL || facts.osName == NULL ? kyrStatusOutOfMemory : kyrStatusOK;
    for (uint32_t i = 0; i < count && status == kyrStatusOK; ++i) status = ReportClass(handle, classNames[i], &facts);
    FreeSystemFacts(&facts);
    return status;
}

static kyrPluginInfo GetInfo(kyrPluginHandle plugin) {
    (void)plugin;
    const kyrPluginInfo info = {"system", KYRCORE_VERSION, "1.0", kyrPluginDataCollector, 0};
    return info;
}

__attribute__((constructor)) static void Register(void) {
    kyrPluginCallbacks callbacks = {NULL, Nothing, Nothing, GetData, GetInfo, Nothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
}
