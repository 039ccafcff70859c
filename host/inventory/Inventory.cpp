#include "inventory/Inventory.h"

#include <list>
#include <utility>

#include "base/CoreLog.h"
#include "base/Output.h"
#include "inventory/Session.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TPluginManager.h"
#include "model/ClassNames.h"
#include "model/CollectionState.h"
#include "model/InstanceChoice.h"
#include "saved/SavedCollection.h"
#include "states/CollectionSummary.h"
#include "states/StateInstances.h"

namespace {

// The host writes the state instances, so no plugin is asked for them. If the caller asked for nothing but states,
// every plugin must run for them, so all classes are wanted.
TClassSelection WithoutStates(const std::vector<std::string>& names, const TContainer& container) {
    const std::unordered_set<const TCIMClass*> states = StateClasses(container);
    std::vector<std::string> rest;
    for (const std::string& name : names)
        if (states.count(container.FindClass(name)) == 0) rest.push_back(name);
    return rest.empty() ? TClassSelection::All() : TClassSelection::These(rest);
}

// Never deleted: destroying a large container would take longer than printing much of it, and the process ends anyway.
TPluginContainer& MakeContainer() {
    static auto* const containers = new std::list<TPluginContainer>;
    return containers->emplace_back();
}

// The core has one plugin manager for all containers.
void InitializePluginManager() {
    if (TPluginManager::GetInstance() == nullptr) TPluginManager::Initialize(".");
}

}  // namespace

class TInventory::TBody {
public:
    TBody(const TSessionOptions& options, std::shared_ptr<const TCoreLog> log)
        : fLog(std::move(log)), fContainer(MakeContainer()), fAlso(options.also) {
        InitializePluginManager();
        if (options.from.empty())
            fSession = std::make_unique<TSession>(options, *fLog, fContainer);
        else
            fFileChange = ReadCollectionWithStates(options.from, fContainer);
    }

    TContainer& Container() { return fContainer; }
    const std::shared_ptr<const TCoreLog>& Log() const { return fLog; }

    EExit Conclude(EExit (*report)(const TContainer&)) const {
        const EExit status = ReportStates(report);
        return fLog->Finish() ? status : eExitOutput;
    }

    TClassSelection WithAlso(TClassSelection wanted) const {
        if (fAlso.empty()) return wanted;
        const TInstanceChoice also(fContainer, fAlso, {});
        for (const std::string& name : also.ClassesToCollect()) wanted = wanted.With(name);
        return wanted.Naming(also.ClassesNamed());
    }

    void Run(const TClassSelection& wanted) {
        if (std::exchange(fRun, true)) return;
        if (fSession)
            fSession->Run(wanted);
        else
            NarrowStates(fContainer, wanted);
    }

private:
    EExit ReportStates(EExit (*report)(const TContainer&)) const {
        const EExit status = report(fContainer);
        if (!fFileChange || status != eExitComplete) return status;
        PrintDiagnostic(SentenceOf(fFileChange));
        return eExitPartial;
    }

    const std::shared_ptr<const TCoreLog> fLog;
    TPluginContainer& fContainer;
    const std::vector<std::string> fAlso;
    std::unique_ptr<TSession> fSession;
    TReason fFileChange;  // why a file is not as it was saved
    bool fRun = false;
};

TInventory::TInventory(const TSessionOptions& options)
    : fBody(std::make_unique<TBody>(options, std::make_shared<const TCoreLog>(options.log))) {}
TInventory::TInventory(const TSessionOptions& options, const TInventory& first)
    : fBody(std::make_unique<TBody>(options, first.fBody->Log())) {}
TInventory::~TInventory() = default;
TContainer& TInventory::Container() const { return fBody->Container(); }
void TInventory::LoadPlugins() { fBody->Run(TClassSelection::SchemaOnly()); }
void TInventory::Collect(const std::vector<std::string>& classes, const std::vector<std::string>& named) {
    fBody->Run(fBody->WithAlso(WithoutStates(classes, Container()).Naming(named)));
}
EExit TInventory::Conclude() const { return fBody->Conclude(ReportIncomplete); }
EExit TInventory::ConcludeSilently() const { return fBody->Conclude(StatusOfCollection); }
