#ifndef CLAYOUT_H
#define CLAYOUT_H

#include <stddef.h>

#include "kyr/kyrPlugin.h"

/* What a C compiler makes of the interface, for comparison with C++. */
typedef struct CLayout {
    size_t infoSize;
    size_t infoPluginType;
    size_t infoUrlType;
    size_t callbacksSize;
    size_t callbacksGetData;
    size_t callbacksPrepareForUnload;
    size_t statusSize;
    size_t severitySize;
} CLayout;

#ifdef __cplusplus
extern "C" {
#endif
CLayout LayoutInC(void);
/* Makes a date-time through the calls and gives the first status that is not kyrStatusOK. */
kyrStatusCode UseDateTimeFromC(void);
#ifdef __cplusplus
}
#endif

#endif
