#ifndef KYR_CWRAPPERS_KYRIIOHANDLE_H
#define KYR_CWRAPPERS_KYRIIOHANDLE_H

class IPlugin;
class TCIMInstance;
class TContainer;

/// One running data callback; what a kyrIOHandle points to.
struct kyriIOHandle {
    kyriIOHandle(TContainer* container, IPlugin* plugin)
        : fPlugin(plugin), fContainer(container), fCurrentInstance(nullptr) {}

    /// Hands the open instance, if there is one, to its class. A failure is logged, then raised. The instance then
    /// stays the current one, unless the failure has destroyed it.
    void CloseCurrentInstance();

    IPlugin* fPlugin;  // whose entry it is
    TContainer* fContainer;
    TCIMInstance* fCurrentInstance;  // null until a class is opened; its class's, once it has been closed
};

#endif
