#ifndef CLAYOUT_H
#define CLAYOUT_H

#include <stddef.h>

#include "kyr/kyrPlugin.h"

/* What compilers of C and of C++ must both make of the interface; neither compiles this file otherwise. */
#define EXPECT_LAYOUT(name, found, expected) typedef char name[(found) == (expected) ? 1 : -1]
EXPECT_LAYOUT(SizeOfInfo, sizeof(kyrPluginInfo), 32);
EXPECT_LAYOUT(OffsetOfPluginType, offsetof(kyrPluginInfo, pluginType), 24);
EXPECT_LAYOUT(OffsetOfUrlType, offsetof(kyrPluginInfo, urlType), 28);
EXPECT_LAYOUT(SizeOfCallbacks, sizeof(kyrPluginCallbacks), 48);
EXPECT_LAYOUT(OffsetOfGetData, offsetof(kyrPluginCallbacks, getData), 24);
EXPECT_LAYOUT(OffsetOfPrepareForUnload, offsetof(kyrPluginCallbacks, prepareForUnload), 40);
EXPECT_LAYOUT(SizeOfStatus, sizeof(kyrStatusCode), 4);
EXPECT_LAYOUT(SizeOfSeverity, sizeof(kyrLogSeverity), 4);

#ifdef __cplusplus
extern "C"
#endif
    /* Makes a date-time through the calls and gives the first status that is not kyrStatusOK. */
    kyrStatusCode
    UseDateTimeFromC(void);

#endif
