#include "CLayout.h"

CLayout LayoutInC(void) {
    CLayout layout;
    layout.infoSize = sizeof(kyrPluginInfo);
    layout.infoPluginType = offsetof(kyrPluginInfo, pluginType);
    layout.infoUrlType = offsetof(kyrPluginInfo, urlType);
    layout.callbacksSize = sizeof(kyrPluginCallbacks);
    layout.callbacksGetData = offsetof(kyrPluginCallbacks, getData);
    layout.callbacksPrepareForUnload = offsetof(kyrPluginCallbacks, prepareForUnload);
    layout.statusSize = sizeof(kyrStatusCode);
    layout.severitySize = sizeof(kyrLogSeverity);
    return layout;
}

kyrStatusCode UseDateTimeFromC(void) {
    kyrCIMDateTime datetime = NULL;
    kyrStatusCode status = kyrNewCIMDateTime(&datetime);
    if (status == kyrStatusOK) status = kyrSetDateTimeInterval(datetime, 1, 2, 3, 4, 5);
    if (status == kyrStatusOK) status = kyrDeleteCIMDateTime(datetime);
    return status;
}
