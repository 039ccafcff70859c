#include <memory>

#include "kyr/IPluginCallbacks.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "kyr/TPluginManager.h"
#include "platform/CoreLog.h"

namespace {

void AddTextQualifier(TCIMClass& cls, const TCIMQualifierDecl& declaration, const std::string& text) {
    std::unique_ptr<TCIMQualifier> qualifier(new TCIMQualifier(declaration, TCIMValue(text)));
    cls.AddQualifier(*qualifier);
    // An equal qualifier that must not be overridden is kept instead, and then this one is still ours.
    if (cls.FindQualifier(declaration.GetName()) == qualifier.get()) qualifier.release();
}

}  // namespace

TPluginManager::TPlugin::TPlugin(IPluginCallbacks* callbacks) : fCallbacks(callbacks), fInitialized(false) {}

TPluginManager::TPlugin::~TPlugin() = default;

IPluginCallbacks* TPluginManager::TPlugin::GetCallbacks() const { return fCallbacks; }

void TPluginManager::TPlugin::Initialize() {
    fCallbacks->Init();
    fInitialized = true;
}

bool TPluginManager::TPlugin::IsInitialized() const { return fInitialized; }
std::string TPluginManager::TPlugin::GetPath() const { return fPath; }

std::string TPluginManager::TPlugin::GetSpecificationPath() const { return TOSSpecific::BuildSpecificationPath(fPath); }

std::vector<TCIMClass*> TPluginManager::TPlugin::GetClassesCollected() const {
    if (fClassesCollected.empty()) throw TKYRException(kyrStatusFail);
    return fClassesCollected;
}

void TPluginManager::TPlugin::SetPath(const std::string& path) { fPath = path; }

void TPluginManager::TPlugin::LoadSpecificationDocument() {
    const std::string path = GetSpecificationPath();
    fClassesCollected = TPluginManager::GetInstance()->GetSchema()->PopulateContainerFromFile(path);
    MarkCollectedClasses();
}

void TPluginManager::TPlugin::MarkCollectedClasses() {
    const TContainer& schema = *TPluginManager::GetInstance()->GetSchema();
    const TCIMQualifierDecl* name = nullptr;
    const TCIMQualifierDecl* version = nullptr;
    try {
        name = schema.GetQualifierDecl("PLUGINNAME");
        version = schema.GetQualifierDecl("PLUGINVERSION");
    } catch (const TKYRException& e) {
        LogAndThrow(e.fCode, "Couldn't find PLUGINNAME/PLUGINVERSION qualifier decl");
    }
    for (TCIMClass* cls : fClassesCollected) {
        AddTextQualifier(*cls, *name, fCallbacks->GetName());
        AddTextQualifier(*cls, *version, fCallbacks->GetVersion());
    }
}
