/* A plugin with little to tell: five instances of each of its classes. */
#include <stdio.h>

#include "kyr/kyrPlugin.h"

static kyrPluginHandle gPlugin;

static kyrStatusCode Nothing(kyrPluginHandle plugin) {
    (void)plugin;
    return kyrStatusOK;
}

static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    (void)plugin;
    for (uint32_t i = 0; i < 5 * count; ++i) {
        char id[16];
        snprintf(id, sizeof id, "%u", i);
        kyrAddClass(handle, classNames[i / 5]);
        kyrAddStringProperty(handle, "Id", id);
        kyrAddUint64Property(handle, "Size", i);
    }
    return kyrStatusOK;
}

static kyrPluginInfo GetInfo(kyrPluginHandle plugin) {
    (void)plugin;
    const kyrPluginInfo info = {PLUGIN_NAME, "1.0", KYR_INTERFACE_VERSION, kyrPluginDataCollector, 0};
    return info;
}

__attribute__((constructor)) static void Register(void) {
    kyrPluginCallbacks callbacks = {0, Nothing, Nothing, GetData, GetInfo, Nothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
}
