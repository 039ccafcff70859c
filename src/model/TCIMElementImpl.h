#ifndef TCIMELEMENTIMPL_H
#define TCIMELEMENTIMPL_H

class TContainer;

/// What the bodies of classes and instances have in common.
class TCIMElementImpl {
public:
    virtual ~TCIMElementImpl() = default;

    virtual void Validate() const = 0;
    virtual TContainer* GetContainer() const = 0;
};

#endif
