#include "model/CollectionState.h"

bool IsMissing(EState state, EReason reason) {
    if (state != eNotAsked) return state != eComplete;
    switch (reason) {
        case EReason::eNone:
        case EReason::eNotSelected:
        case EReason::eMarkedDontCollect:
        case EReason::eNoData:
        case EReason::eSchemaOnly:
        case EReason::eNotNamed:
        case EReason::eNotGranted:
            return false;
        default:
            return true;
    }
}
