/* A plugin that does what its build tells: one source for those that behave and those that fail. */
#include "kyr/kyrPlugin.h"

#ifndef PLUGIN_TYPE
#define PLUGIN_TYPE kyrPluginDataCollector
#endif
#ifndef INIT_STATUS
#define INIT_STATUS kyrStatusOK
#endif
#ifndef DATA_STATUS
#define DATA_STATUS kyrStatusOK
#endif
#ifndef KEY_VALUE
#define KEY_VALUE "1"
#endif

static kyrPluginHandle gPlugin;

static kyrStatusCode Init(kyrPluginHandle plugin) {
    if (INIT_STATUS != kyrStatusOK) kyrWriteLog(plugin, kyrLogError, "there is no device");
    return INIT_STATUS;
}

static kyrStatusCode Nothing(kyrPluginHandle plugin) {
    (void)plugin;
    return kyrStatusOK;
}

/* One instance of each class; none without permission. */
static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    (void)plugin;
    if (DATA_STATUS == kyrStatusAccessDenied) return DATA_STATUS;
    for (uint32_t i = 0; i < count; ++i) {
        kyrAddClass(handle, classNames[i]);
        kyrAddStringProperty(handle, "Id", KEY_VALUE);
    }
    return DATA_STATUS;
}

static kyrPluginInfo GetInfo(kyrPluginHandle plugin) {
    (void)plugin;
    const kyrPluginInfo info = {PLUGIN_NAME, "1.0", "1.0", PLUGIN_TYPE, 0};
    return info;
}

#ifndef REGISTERS_NOTHING
__attribute__((constructor))
#endif
void Register(void);

void Register(void) {
    kyrPluginCallbacks callbacks = {0, Init, Nothing, GetData, GetInfo, Nothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
#ifdef REGISTERS_TWO
    kyrRegisterPlugin(&callbacks, &gPlugin);
#endif
}
