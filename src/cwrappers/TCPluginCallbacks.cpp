#include "cwrappers/TCPluginCallbacks.h"

#include <cstring>

#include "cwrappers/kyriIOHandle.h"
#include "kyr/IPlugin.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TKYRException.h"
#include "kyr/TRootObject.h"
#include "model/TCIMInstanceImpl.h"

namespace {

// Memory that is leaked on purpose is allocated in functions of their own, which tests/leaks.supp names.

/// A second Init leaks the first copy, because the plugin may have kept the pointer.
[[gnu::noinline]] char* kyriLeakPluginPath(const std::string& path) {
    return static_cast<char*>(std::memcpy(new char[path.size() + 1], path.c_str(), path.size() + 1));
}

/// Compatibility: never freed, because a plugin may keep the array; see docs/oddities.md.
[[gnu::noinline]] const char** kyriLeakClassNameArray(const std::vector<std::string>& names) {
    const char** array = new const char*[names.size()];
    for (size_t i = 0; i < names.size(); ++i) array[i] = names[i].c_str();
    return array;
}

/// Frees an instance that could not be stored, unless a class owns it because it was stored before.
void DropUnlessStored(const TCIMInstance* instance) {
    if (instance && !TCIMInstanceImpl::Of(*instance).IsAdopted()) delete instance;
}

void Require(kyrStatusCode status) {
    if (status != kyrStatusOK) throw TKYRException(status);
}

}  // namespace

TCPluginCallbacks::TCPluginCallbacks(const kyrPluginCallbacks& entries)
    : fEntries(entries), fHandle(TRootObject::GetPluginManager()->RegisterPlugin(this)), fPluginPath(nullptr) {}

TCPluginCallbacks::~TCPluginCallbacks() { delete[] fPluginPath; }

int32_t TCPluginCallbacks::GetType() { return fEntries.getInfo(this).pluginType; }
std::string TCPluginCallbacks::GetName() { return fEntries.getInfo(this).name; }
std::string TCPluginCallbacks::GetVersion() { return fEntries.getInfo(this).version; }
std::string TCPluginCallbacks::GetInterfaceVersion() { return fEntries.getInfo(this).interfaceVersion; }
int32_t TCPluginCallbacks::GetURLType() { return fEntries.getInfo(this).urlType; }

void TCPluginCallbacks::PrepareForUnload() {
    Require(fEntries.prepareForUnload(this));
    delete this;
}

void TCPluginCallbacks::Init() {
    fPluginPath = kyriLeakPluginPath(fHandle->GetPath());
    Require(fEntries.init(this));
}

void TCPluginCallbacks::DeInit() { Require(fEntries.deInit(this)); }

void TCPluginCallbacks::GetData(TContainer* container, std::vector<TCIMClass*>& classes) {
    kyriIOHandle handle(container, fHandle);
    std::vector<std::string> names;
    names.reserve(classes.size());
    for (const TCIMClass* cls : classes) names.push_back(cls->GetName());
    Require(fEntries.getData(this, &handle, kyriLeakClassNameArray(names), static_cast<uint32_t>(names.size())));
    try {
        handle.CloseCurrentInstance();
    } catch (...) {
        DropUnlessStored(handle.fCurrentInstance);
        throw;
    }
}
