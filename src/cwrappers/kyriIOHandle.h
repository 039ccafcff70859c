#ifndef KYR_CWRAPPERS_KYRIIOHANDLE_H
#define KYR_CWRAPPERS_KYRIIOHANDLE_H

class IPlugin;
class TCIMInstance;
class TContainer;

/// The state of one data callback; what a kyrIOHandle points to.
struct kyriIOHandle {
    kyriIOHandle(TContainer* container, IPlugin* plugin)
        : fPlugin(plugin), fContainer(container), fCurrentInstance(nullptr) {}

    /// Stores the current instance, if there is one, in its class. Logs and raises a failure; the instance is then
    /// still the current one, unless the failure has destroyed it.
    void CloseCurrentInstance();

    IPlugin* fPlugin;  // whose callback is running
    TContainer* fContainer;
    TCIMInstance* fCurrentInstance;  // null before the first kyrAddClass; owned by its class once stored
};

#endif
