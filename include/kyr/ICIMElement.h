#ifndef ICIMELEMENT_H
#define ICIMELEMENT_H

#include "kyr/kyrExport.h"

class TContainer;

/// What lives in a container: a class or an instance.
class KYR_API ICIMElement {
public:
    virtual ~ICIMElement();

    /// Raises a status if the element cannot join its container.
    virtual void Validate() const = 0;
    /// Validates the element and hands it to its owner. It must have been made with new.
    virtual void AddToContainer() const = 0;
    virtual TContainer* GetContainer() const = 0;
};

#endif
