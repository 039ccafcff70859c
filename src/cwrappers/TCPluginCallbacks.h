#ifndef KYR_CWRAPPERS_TCPLUGINCALLBACKS_H
#define KYR_CWRAPPERS_TCPLUGINCALLBACKS_H

#include "kyr/IPluginBasicQueryCallbacks.h"
#include "kyr/IPluginCallbacks.h"
#include "kyr/kyrPlugin.h"

/// A plugin's C entries, seen as the interfaces of the core; at the same time the plugin's handle. It belongs to
/// nobody: only PrepareForUnload destroys it.
class KYR_API TCPluginCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
public:
    /// Registers with the plugin manager.
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
    IPlugin* fHandle;   // the manager's
    char* fPluginPath;  // owned
};

#endif
