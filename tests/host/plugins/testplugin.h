/*
 * What the plugins of these tests have in common. The source that includes it has Init and GetData, and calls Register
 * when it is loaded.
 */
#ifndef TESTPLUGIN_H
#define TESTPLUGIN_H

#include "kyr/kyrPlugin.h"

#ifndef PLUGIN_TYPE
#define PLUGIN_TYPE kyrPluginDataCollector
#endif

#ifndef BUILT_FOR
#define BUILT_FOR KYR_INTERFACE_VERSION
#endif

static kyrPluginHandle gPlugin;

static kyrStatusCode Nothing(kyrPluginHandle plugin) {
    (void)plugin;
    return kyrStatusOK;
}

static kyrPluginInfo GetInfo(kyrPluginHandle plugin) {
    (void)plugin;
    const kyrPluginInfo info = {PLUGIN_NAME, "1.0", BUILT_FOR, PLUGIN_TYPE, 0};
    return info;
}

static void Add(kyrIOHandle handle, const char* className, const char* id) {
    kyrAddClass(handle, className);
    kyrAddStringProperty(handle, "Id", id);
}

/* The name of the computer system, or why there is none. */
static inline const char* SystemName(void) {
    const char* name;
    const kyrStatusCode status = kyrGetSystemName(&name);
    return status == kyrStatusOK ? name : kyrTranslateStatusCode(status);
}

static kyrStatusCode Init(kyrPluginHandle plugin);
static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count);

static void Register(void) {
    kyrPluginCallbacks callbacks = {0, Init, Nothing, GetData, GetInfo, Nothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
}

#endif
