#ifndef ICIMELEMENT_H
#define ICIMELEMENT_H

#include "kyr/kyrExport.h"

class TContainer;

/// What lives in a container: a class or an instance. A reference names one of the two; tell them apart with a
/// dynamic_cast to TCIMClass or TCIMInstance.
class KYR_API ICIMElement {
public:
    virtual ~ICIMElement();

    /// Raises a status if the element cannot join its container: a class without a key, an instance with a NULL key.
    virtual void Validate() const = 0;
    /// Validates the element and hands it to its owner: a class to its container, an instance to its class. It must
    /// have been made with new, and must not be deleted by the caller afterwards.
    virtual void AddToContainer() const = 0;
    /// The container that the element was made for, also before it has been added.
    virtual TContainer* GetContainer() const = 0;
};

#endif
