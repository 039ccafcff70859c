/* A plugin that does what its build tells: one source for those that behave and those that fail. */
#include "testplugin.h"

#ifndef INIT_STATUS
#define INIT_STATUS kyrStatusOK
#endif
#ifndef DATA_STATUS
#define DATA_STATUS kyrStatusOK
#endif
#ifndef KEY_VALUE
#define KEY_VALUE "1"
#endif
#ifndef REGISTRATIONS
#define REGISTRATIONS 1
#endif

static kyrStatusCode Init(kyrPluginHandle plugin) {
    if (INIT_STATUS != kyrStatusOK) kyrWriteLog(plugin, kyrLogError, "there is no device");
    return INIT_STATUS;
}

/* One instance of each class; none without permission. */
static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    (void)plugin;
    if (DATA_STATUS == kyrStatusAccessDenied) return DATA_STATUS;
    for (uint32_t i = 0; i < count; ++i) Add(handle, classNames[i], KEY_VALUE);
    return DATA_STATUS;
}

#ifndef REGISTERS_NOTHING
__attribute__((constructor))
#endif
void Load(void);

void Load(void) {
    for (int i = 0; i < REGISTRATIONS; ++i) Register();
}
