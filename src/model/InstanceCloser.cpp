#include "model/InstanceCloser.h"

#include "kyr/TCIMInstance.h"

void CloseInstance(TCIMInstance*& instance) {
    const boost::shared_ptr<TCIMInstanceImpl> body = instance->GetBody();
    try {
        instance->AddToContainer();
    } catch (...) {
        if (body.unique()) instance = nullptr;  // the failure has destroyed the handle, which had shared the body
        throw;
    }
}
