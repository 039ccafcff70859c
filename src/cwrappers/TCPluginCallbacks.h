#ifndef KYR_CWRAPPERS_TCPLUGINCALLBACKS_H
#define KYR_CWRAPPERS_TCPLUGINCALLBACKS_H

#include "kyr/IPluginBasicQueryCallbacks.h"
#include "kyr/IPluginCallbacks.h"
#include "kyr/kyrPlugin.h"

/// Implements the core's plugin interfaces by the C callbacks of a plugin; also what a kyrPluginHandle points to. It
/// destroys itself in PrepareForUnload.
class KYR_API TCPluginCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
public:
    /// Registers the plugin with the plugin manager.
    explicit TCPluginCallbacks(const kyrPluginCallbacks& entries);
    ~TCPluginCallbacks() override;
    TCPluginCallbacks(const TCPluginCallbacks&) = delete;
    TCPluginCallbacks& operator=(const TCPluginCallbacks&) = delete;

    int32_t GetType() override;
    std::string GetName() override;
    std::string GetVersion() override;
    std::string GetInterfaceVersion() override;
    void PrepareForUnload() override;
    void Init() override;
    void DeInit() override;
    virtual int32_t GetURLType();
    void GetData(TContainer* container, std::vector<TCIMClass*>& classes) override;

    IPlugin* GetPluginHandle() const { return fHandle; }
    /// Null before Init.
    const char* GetPluginPath() const { return fPluginPath; }

private:
    kyrPluginCallbacks fEntries;
    IPlugin* fHandle;   // owned by the plugin manager
    char* fPluginPath;  // owned
};

#endif
