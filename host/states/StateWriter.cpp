#include "states/StateWriter.h"

#include <unistd.h>

#include <algorithm>
#include <set>

#include "base/Signals.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "states/HostIdentity.h"
#include "states/RefusedCalls.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kMostLines = 50;  // of the log in one state instance

const char* PrefixOf(const TMessage& message) {
    if (message.severity == kyrLogError) return "error: ";
    return message.severity == kyrLogWarning ? "warning: " : "printed: ";
}

TCIMValue StringArray(const std::vector<TCIMValue>& elements) {
    return TCIMValue(TCIMValue::TCIMType::eCIMString, 0, elements);
}

std::vector<TCIMValue> LogLines(const std::vector<const TMessage*>& messages) {
    std::vector<TCIMValue> lines;
    for (size_t i = 0; i < messages.size() && i < kMostLines; ++i)
        lines.emplace_back(PrefixOf(*messages[i]) + messages[i]->text);
    if (messages.size() > kMostLines)
        lines.emplace_back("and " + std::to_string(messages.size() - kMostLines) + " more");
    return lines;
}

// "/sys/class/block: not present"
std::vector<TCIMValue> SourceTexts(const std::vector<TReason>& sources) {
    std::vector<TCIMValue> texts;
    for (const TReason& source : sources) {
        const bool isMissing = source.code == EReason::eSourceMissing;
        texts.emplace_back(source.file + ": " + SentenceOf(ReasonFor(isMissing ? EReason::eNotPresent : source.code)));
    }
    return texts;
}

class TStateWriter {
public:
    TStateWriter(const std::list<TPluginLibrary>& libraries, const TClassSelection& wanted, const TContainer& container)
        : fContainer(container), fWanted(wanted) {
        for (const TPluginLibrary& library : libraries) fNames.insert(library.report.NameIn(library.path));
    }

    void WriteLibrary(const TPluginLibrary& library) {
        if (library.report.plugins.empty()) WritePlugin(library, nullptr);
        for (const TPluginInfo& plugin : library.report.plugins) WritePlugin(library, &plugin);
        for (const TCIMClass* cls : library.classes)
            if (!cls->IsAbstract()) WriteClass(library, *cls);
    }

    void WriteCollection(const TReason& interruption) {
        TCIMInstance& state = NewState(kCollectionClass, FindCollectionOutcome(interruption), {});
        state.SetPropertyValue("Tool", TCIMValue("kyr"));
        state.SetPropertyValue("ToolVersion", TCIMValue(KYRCORE_VERSION));
        state.SetPropertyValue("Superuser", TCIMValue(geteuid() == 0));
        StoreHost(state);
        state.AddToContainer();
    }

private:
    TCIMInstance& NewState(const char* className, const TOutcome& outcome,
                           const std::vector<const TMessage*>& messages) {
        TCIMInstance& state = *fContainer.AllocateInstance(fContainer.GetClass(className));
        StoreOutcome(state, outcome);
        if (!messages.empty()) state.SetPropertyValue("LogLines", StringArray(LogLines(messages)));
        return state;
    }

    // The library's path if the plugin has no name, or if plugins of several libraries have the same name.
    std::string NameOf(const TPluginLibrary& library, const TPluginInfo* plugin) const {
        const bool isUnique = plugin != nullptr && !plugin->name.empty() && fNames.count(plugin->name) < 2;
        return isUnique ? plugin->name : library.path;
    }

    void WritePlugin(const TPluginLibrary& library, const TPluginInfo* plugin) {
        const TOutcome outcome = FindPluginOutcome(library, plugin, fWanted);
        TCIMInstance& state = NewState(kCollectedPluginClass, outcome, MessagesOf(library, nullptr));
        state.SetPropertyValue("Library", TCIMValue(library.path));
        state.SetPropertyValue("Folder", TCIMValue(library.folder));
        state.SetPropertyValue("Name", TCIMValue(NameOf(library, plugin)));
        if (plugin != nullptr) StoreVersions(*plugin, state);
        const std::vector<std::string>& sandbox = library.report.sandbox;
        if (!sandbox.empty()) state.SetPropertyValue("Sandbox", StringArray({sandbox.begin(), sandbox.end()}));
        state.AddToContainer();
        ++fPlugins;
        fIncomplete += IsMissing(outcome);
    }

    static void StoreVersions(const TPluginInfo& plugin, TCIMInstance& state) {
        state.SetPropertyValue("Version", TCIMValue(plugin.version));
        if (!plugin.interfaceVersion.empty())
            state.SetPropertyValue("InterfaceVersion", TCIMValue(plugin.interfaceVersion));
    }

    // The document of a class that was not selected may hold instances. They are not counted, since nobody asked for
    // them.
    void WriteClass(const TPluginLibrary& library, const TCIMClass& cls) {
        const TOutcome outcome = FindClassOutcome(library, cls, fWanted);
        const bool isSelected = outcome.reason.code != EReason::eNotSelected;
        const auto count = isSelected ? static_cast<unsigned int>(cls.EnumerateInstances(false).size()) : 0u;
        TCIMInstance& state = NewState(kCollectedClassClass, outcome, MessagesOf(library, &cls));
        const std::vector<TPluginInfo>& plugins = library.report.plugins;
        state.SetPropertyValue("Name", TCIMValue(cls.GetName()));
        state.SetPropertyValue("Plugin", TCIMValue(NameOf(library, plugins.empty() ? nullptr : &plugins.front())));
        state.SetPropertyValue("InstanceCount", TCIMValue(count));
        const auto sources = library.missingSources.find(cls.GetName());
        if (isSelected && sources != library.missingSources.end())
            state.SetPropertyValue("MissingSources",
                                   TCIMValue(TCIMValue::TCIMType::eCIMString, 0, SourceTexts(sources->second)));
        state.AddToContainer();
        fHasInstances |= count != 0;
        fIsAsked |= outcome.state != eNotAsked;
    }

    TOutcome FindCollectionOutcome(const TReason& interruption) const {
        const TReason reason = interruption ? interruption : PluginsIncomplete(fIncomplete, fPlugins);
        if (fWanted.IsSchemaOnly())
            return reason ? TOutcome{ePartial, reason} : TOutcome{eNotAsked, ReasonFor(EReason::eSchemaOnly)};
        if (!reason && (fIsAsked || fHasInstances)) return {};
        return {fHasInstances ? ePartial : eFailed, reason ? reason : ReasonFor(EReason::eNoClassCollected)};
    }

    const TContainer& fContainer;
    const TClassSelection& fWanted;
    std::multiset<std::string> fNames;  // of the plugins of all libraries
    size_t fPlugins = 0;
    size_t fIncomplete = 0;
    bool fHasInstances = false;
    bool fIsAsked = false;
};

// Removes state instances that a plugin or its document has made: only the host may say how complete a collection is.
void RemoveStates(const TContainer& container) {
    for (TCIMClass* const cls : container.GetClass(kStateClass)->EnumerateSubClasses(true)) RemoveInstances(*cls);
}

}  // namespace

void WriteStates(std::list<TPluginLibrary>& libraries, TMissingSources sources, const TClassSelection& wanted,
                 int interruption, const TContainer& container) {
    RemoveStates(container);
    for (TPluginLibrary& library : libraries) {
        ExplainRefusedCalls(library, libraries, container);
        library.AssignMessagesToClasses();
        library.AssignMissingSources(sources);
    }
    TStateWriter writer(libraries, wanted, container);
    for (const TPluginLibrary& library : libraries) writer.WriteLibrary(library);
    writer.WriteCollection(interruption == 0 ? TReason() : ReasonFor(EReason::eInterrupted, SignalName(interruption)));
}
