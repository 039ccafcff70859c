#include "CLayout.h"

kyrStatusCode UseDateTimeFromC(void) {
    kyrCIMDateTime datetime = NULL;
    kyrStatusCode status = kyrNewCIMDateTime(&datetime);
    if (status == kyrStatusOK) status = kyrSetDateTimeInterval(datetime, 1, 2, 3, 4, 5);
    if (status == kyrStatusOK) status = kyrDeleteCIMDateTime(datetime);
    return status;
}
