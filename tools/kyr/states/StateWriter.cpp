#include "states/StateWriter.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "isolation/Signals.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"

namespace {

constexpr size_t kMostLines = 50;

const char* KindOf(const TNote& note) {
    return note.severity == kyrLogError ? "error: " : note.severity == kyrLogWarning ? "warning: " : "printed: ";
}

std::vector<TCIMValue> LogLines(const std::vector<const TNote*>& notes) {
    std::vector<TCIMValue> lines;
    for (size_t i = 0; i < notes.size() && i < kMostLines; ++i) lines.emplace_back(KindOf(*notes[i]) + notes[i]->text);
    if (notes.size() > kMostLines) lines.emplace_back("and " + std::to_string(notes.size() - kMostLines) + " more");
    return lines;
}

class TStateWriter {
public:
    TStateWriter(const std::list<TLibrary>& libraries, TWanted wanted, const TContainer& container)
        : fContainer(container), fWanted(wanted) {
        for (const TLibrary& library : libraries) fNames.insert(library.report.NameIn(library.path));
    }

    void WriteLibrary(const TLibrary& library) {
        if (library.report.plugins.empty()) WritePlugin(library, nullptr);
        for (const TPluginFacts& plugin : library.report.plugins) WritePlugin(library, &plugin);
        for (const TCIMClass* cls : library.classes)
            if (!cls->IsAbstract()) WriteClass(library, *cls);
    }

    void WriteCollection(const TVerdict& interruption) {
        const TVerdict verdict = JudgeCollection(interruption);
        TCIMInstance& state = NewState(kCollectionClass, verdict, {});
        state.SetPropertyValue("Tool", TCIMValue("kyr"));
        state.SetPropertyValue("ToolVersion", TCIMValue(KYRCORE_VERSION));
        state.SetPropertyValue("Superuser", TCIMValue(geteuid() == 0));
        state.AddToContainer();
    }

private:
    TCIMInstance& NewState(const char* className, const TVerdict& verdict, const std::vector<const TNote*>& notes) {
        TCIMInstance& state = *fContainer.AllocateInstance(fContainer.GetClass(className));
        state.SetPropertyValue("State", TCIMValue(static_cast<unsigned short>(verdict.state)));
        if (!verdict.reason.empty()) state.SetPropertyValue("Reason", TCIMValue(verdict.reason));
        if (!notes.empty())
            state.SetPropertyValue("LogLines", TCIMValue(TCIMValue::TCIMType::eCIMString, 0, LogLines(notes)));
        return state;
    }

    // The library's path where no name tells which plugin is meant.
    std::string NameOf(const TLibrary& library, const TPluginFacts* plugin) const {
        const bool isTelling = plugin != nullptr && !plugin->name.empty() && fNames.count(plugin->name) < 2;
        return isTelling ? plugin->name : library.path;
    }

    void WritePlugin(const TLibrary& library, const TPluginFacts* plugin) {
        const TVerdict verdict = JudgePlugin(library, plugin, fWanted);
        TCIMInstance& state = NewState(kCollectedPluginClass, verdict, NotesOf(library, nullptr));
        state.SetPropertyValue("Library", TCIMValue(library.path));
        state.SetPropertyValue("Name", TCIMValue(NameOf(library, plugin)));
        if (plugin != nullptr) state.SetPropertyValue("Version", TCIMValue(plugin->version));
        state.AddToContainer();
        ++fPlugins;
        fMissing += IsMissing(verdict);
    }

    void WriteClass(const TLibrary& library, const TCIMClass& cls) {
        const TVerdict verdict = JudgeClass(library, cls, fWanted);
        const bool isLeftOut = verdict.reason == kReasonUnwanted;  // its document may hold instances all the same
        const auto count = isLeftOut ? 0u : static_cast<unsigned int>(cls.EnumerateInstances(false).size());
        TCIMInstance& state = NewState(kCollectedClassClass, verdict, NotesOf(library, &cls));
        const std::vector<TPluginFacts>& plugins = library.report.plugins;
        state.SetPropertyValue("Name", TCIMValue(cls.GetName()));
        state.SetPropertyValue("Plugin", TCIMValue(NameOf(library, plugins.empty() ? nullptr : &plugins.front())));
        state.SetPropertyValue("InstanceCount", TCIMValue(count));
        state.AddToContainer();
        fAny |= count != 0;
        fAsked |= verdict.state != eNotAsked;
    }

    TVerdict JudgeCollection(const TVerdict& interruption) const {
        std::string reason = interruption.reason;
        if (reason.empty()) reason = PluginsMissing(fMissing, fPlugins);
        if (fWanted == nullptr)
            return {reason.empty() ? eNotAsked : ePartial, reason.empty() ? kReasonSchemaOnly : reason};
        if (reason.empty() && (fAsked || fAny)) return {};
        if (reason.empty()) reason = "no plugin was asked for anything";
        return {fAny ? ePartial : eFailed, reason};
    }

    const TContainer& fContainer;
    const TWanted fWanted;
    std::multiset<std::string> fNames;  // that the libraries have
    size_t fPlugins = 0;
    size_t fMissing = 0;
    bool fAny = false;
    bool fAsked = false;
};

// A plugin, or its document, has no say in what is told of it.
void RemoveStates(const TContainer& container) {
    for (TCIMClass* const cls : container.GetClass(kStateClass)->EnumerateSubClasses(true))
        for (auto states = cls->EnumerateInstances(false); !states.empty(); states = cls->EnumerateInstances(false))
            cls->RemoveInstance(*states.front());
}

}  // namespace

void WriteStates(const std::list<TLibrary>& libraries, TWanted wanted, int interruption, const TContainer& container) {
    RemoveStates(container);
    TStateWriter writer(libraries, wanted, container);
    for (const TLibrary& library : libraries) writer.WriteLibrary(library);
    TVerdict verdict;
    if (interruption != 0) verdict = {eFailed, "interrupted by " + SignalName(interruption)};
    writer.WriteCollection(verdict);
}
