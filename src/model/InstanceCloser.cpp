#include "model/InstanceCloser.h"

#include "kyr/TCIMInstance.h"

void CloseInstance(TCIMInstance*& instance) {
    const boost::shared_ptr<TCIMInstanceImpl> body = instance->GetBody();
    try {
        instance->AddToContainer();
    } catch (...) {
        if (body.unique()) instance = nullptr;  // the handle, the only other owner, is gone
        throw;
    }
}
