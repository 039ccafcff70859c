#ifndef FAKEPLUGIN_H
#define FAKEPLUGIN_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "kyr/IPlugin.h"
#include "kyr/IPluginCallbacks.h"

/// A plugin without a library and without the query interface.
class FakePlugin : public IPlugin, public IPluginCallbacks {
public:
    explicit FakePlugin(std::string name) : fName(std::move(name)) {}

    IPluginCallbacks* GetCallbacks() const override { return const_cast<FakePlugin*>(this); }
    void Initialize() override {}
    bool IsInitialized() const override { return true; }
    std::string GetPath() const override { return "fake"; }
    std::string GetSpecificationPath() const override { return "fake"; }
    std::vector<TCIMClass*> GetClassesCollected() const override { return {}; }

    int32_t GetType() override { return 0; }
    std::string GetName() override {
        fWhenAsked();
        return fName;
    }
    std::string GetVersion() override { return "1.0"; }
    std::string GetInterfaceVersion() override { return "1.0"; }
    void PrepareForUnload() override {}
    void Init() override {}
    void DeInit() override {}

    std::function<void()> fWhenAsked = [] {};

private:
    std::string fName;
};

#endif
