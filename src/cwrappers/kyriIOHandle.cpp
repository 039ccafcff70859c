#include "cwrappers/kyriIOHandle.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TKYRException.h"
#include "model/TCIMInstanceImpl.h"
#include "platform/CoreLog.h"

void kyriIOHandle::CloseCurrentInstance() {
    if (!fCurrentInstance) return;
    const TCIMClass* cls = fCurrentInstance->GetClass();  // now, because a failure may destroy the instance
    try {
        CloseInstance(fCurrentInstance);
    } catch (const TKYRException& e) {
        LogAndThrow(e.fCode, "kyrAddClass: CIM class " + cls->GetName() + " threw exception " + e.what());
    }
}
