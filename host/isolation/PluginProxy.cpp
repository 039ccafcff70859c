#include "isolation/PluginProxy.h"

#include <unistd.h>

#include <exception>
#include <stdexcept>

#include "base/StatusWords.h"
#include "kyr/IPluginManager.h"
#include "kyr/TKYRException.h"
#include "kyr/TRootObject.h"
#include "kyr/kyrPlugin.h"

namespace {

std::string Load(const std::string& path) {
    try {
        TRootObject::GetPluginManager()->LoadPlugin(path);
    } catch (const std::exception& e) {
        return WithStatusInWords(e.what());
    } catch (...) {
        return "an exception of a kind unknown";
    }
    return "";
}

// A NULL is no text.
std::string InterfaceVersionOf(IPluginCallbacks& callbacks) {
    try {
        return callbacks.GetInterfaceVersion();
    } catch (const std::logic_error&) {
        return "";
    }
}

TPluginInfo Describe(const IPlugin& plugin) {
    IPluginCallbacks& callbacks = *plugin.GetCallbacks();
    return {callbacks.GetName(), callbacks.GetVersion(), InterfaceVersionOf(callbacks), callbacks.GetType(),
            plugin.IsInitialized()};
}

std::vector<TCIMClass*> ClassesToAskFor(const TPluginLibrary& library) {
    std::vector<TCIMClass*> classes;
    for (TCIMClass* cls : library.classes)
        if (!library.IsLeftOut(*cls)) classes.push_back(cls);
    return classes;
}

std::string StatusText(int32_t status) {
    const bool isKnown = status >= 0 && status < kyrStatusEnd;
    return isKnown ? WithStatusInWords(kyrTranslateStatusCode(status)) : std::to_string(status) + " (no known status)";
}

TCallFailure FailureOf(const std::exception& e) {
    if (const auto* const status = dynamic_cast<const TKYRException*>(&e))
        return {"returned " + StatusText(status->fCode), status->fCode};
    const std::string text = e.what();
    return {"was left by an exception" + (text.empty() ? "" : ": " + text)};
}

}  // namespace

void TProxyCallbacks::GetData(TContainer* container, std::vector<TCIMClass*>& classes) {
    auto* const query = dynamic_cast<IPluginBasicQueryCallbacks*>(&fCallbacks);
    if (query == nullptr) throw TKYRException(kyrStatusInvalidPlugin);
    fObserver.asked(classes);
    try {
        query->GetData(container, classes);
    } catch (const std::exception& e) {
        fObserver.ended(FailureOf(e));
        throw;
    } catch (...) {
        fObserver.ended({"was left by an exception of a kind unknown"});
        throw TKYRException(kyrStatusFail);  // the core catches standard ones only
    }
    fObserver.ended({});
}

// The core tells if nothing is found there.
void EnterFolderOf(const TPluginLibrary& library) { (void)!chdir(library.folder.c_str()); }

boost::shared_ptr<TPluginProxy> LoadLibrary(const TPluginLibrary& library, TPluginReport& report) {
    auto& plugins = TRootObject::GetPluginManager()->GetPluginsContainer();
    const auto before = static_cast<long>(plugins.size());
    EnterFolderOf(library);
    report.loadFailure = Load(library.path);
    const auto first = std::next(plugins.begin(), before);
    for (auto plugin = first; plugin != plugins.end(); ++plugin) report.plugins.push_back(Describe(**plugin));
    const TPluginInfo* const owner = report.FindOwner();
    if (!report.IsLoaded() || owner->type != kyrPluginDataCollector || library.classes.empty()) return nullptr;
    boost::shared_ptr<IPlugin>& plugin = *std::next(first, owner - report.plugins.data());
    const boost::shared_ptr<TPluginProxy> proxy(new TPluginProxy(plugin, ClassesToAskFor(library)));
    plugin = proxy;
    return proxy;
}
