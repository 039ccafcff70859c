#include "inventory/Inventory.h"

#include "inventory/Log.h"
#include "inventory/Session.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TPluginManager.h"
#include "saved/SavedCollection.h"
#include "states/Conclusion.h"
#include "states/SavedStates.h"
#include "states/State.h"

namespace {

bool IsState(const TCIMClass* cls, const TCIMClass* states) {
    return cls != nullptr && states != nullptr && cls->IsSubclassOf(states);
}

// What tells how complete the rest is comes with the rest: who wants nothing else wants all to be asked.
std::vector<std::string> WithoutStates(const std::vector<std::string>& names, const TContainer& container) {
    const TCIMClass* const states = container.FindClass(kStateClass);
    std::vector<std::string> rest;
    for (const std::string& name : names)
        if (!IsState(container.FindClass(name), states)) rest.push_back(name);
    return rest;
}

// It goes with the process: to take a large one apart would take longer than to print much of it.
TStreamingContainer& MakeContainer() {
    static TStreamingContainer* const container = new TStreamingContainer;
    return *container;
}

}  // namespace

class TInventory::TBody {
public:
    explicit TBody(const TSessionOptions& options) : fLog(options), fContainer(MakeContainer()) {
        if (options.from.empty())
            fSession = std::make_unique<TSession>(options, fLog, fContainer);
        else
            ReadFile(options.from);
    }

    TContainer& Container() { return fContainer; }

    void Run(const std::vector<std::string>* classes) {
        if (fSession && !fRun) fSession->Run(classes);
        if (!fSession && !fRun) NarrowStates(fContainer, classes);
        fRun = true;
    }

private:
    void ReadFile(const std::string& path) {
        TPluginManager::Initialize(".");
        ReadCollection(path, fContainer);
    }

    const TLog fLog;
    TStreamingContainer& fContainer;
    std::unique_ptr<TSession> fSession;
    bool fRun = false;
};

TInventory::TInventory(const TSessionOptions& options) : fBody(std::make_unique<TBody>(options)) {}
TInventory::~TInventory() = default;
TContainer& TInventory::Container() const { return fBody->Container(); }
void TInventory::LoadPlugins() { fBody->Run(nullptr); }
void TInventory::Collect(const std::vector<std::string>& classes) {
    const std::vector<std::string> asked = WithoutStates(classes, Container());
    fBody->Run(&asked);
}
EExit TInventory::Conclude() const { return TellWhatIsMissing(Container()); }
