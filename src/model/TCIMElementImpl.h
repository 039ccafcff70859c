#ifndef KYR_MODEL_TCIMELEMENTIMPL_H
#define KYR_MODEL_TCIMELEMENTIMPL_H

class TContainer;

/// Base of the bodies of classes and instances.
class TCIMElementImpl {
public:
    virtual ~TCIMElementImpl() = default;

    virtual void Validate() const = 0;
    virtual TContainer* GetContainer() const = 0;
};

#endif
