#include "inventory/Loading.h"

#include <exception>

#include "kyr/IPluginCallbacks.h"
#include "kyr/IPluginManager.h"
#include "kyr/TRootObject.h"
#include "kyr/kyrPlugin.h"
#include "states/PluginReport.h"

namespace {

std::string Load(const std::string& path) {
    try {
        TRootObject::GetPluginManager()->LoadPlugin(path);
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return "an exception of a kind unknown";
    }
    return "";
}

TPluginFacts Describe(const IPlugin& plugin) {
    IPluginCallbacks& callbacks = *plugin.GetCallbacks();
    return {callbacks.GetName(), callbacks.GetVersion(), callbacks.GetType(), plugin.IsInitialized()};
}

}  // namespace

boost::shared_ptr<TStandIn> LoadLibrary(const std::string& path, const std::vector<TCIMClass*>& classes,
                                        TPluginReport& report) {
    auto& plugins = TRootObject::GetPluginManager()->GetPluginsContainer();
    const auto before = static_cast<long>(plugins.size());
    report.refusal = Load(path);
    const auto first = std::next(plugins.begin(), before);
    for (auto plugin = first; plugin != plugins.end(); ++plugin) report.plugins.push_back(Describe(**plugin));
    const TPluginFacts* const owner = report.FindOwner();
    if (owner == nullptr || owner->type != kyrPluginDataCollector || !report.refusal.empty() || classes.empty())
        return nullptr;
    boost::shared_ptr<IPlugin>& plugin = *std::next(first, owner - report.plugins.data());
    const boost::shared_ptr<TStandIn> standIn(new TStandIn(plugin, classes));
    plugin = standIn;
    return standIn;
}
