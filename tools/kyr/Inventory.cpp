#include "Inventory.h"

#include "Conclusion.h"
#include "Log.h"
#include "SavedCollection.h"
#include "SavedStates.h"
#include "Session.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "kyr/TPluginManager.h"

namespace {

bool IsState(const TCIMClass* cls, const TCIMClass* states) {
    return cls != nullptr && states != nullptr && cls->IsSubclassOf(states);
}

// What tells how complete the rest is comes with the rest: who wants nothing else wants all to be asked.
std::vector<std::string> WithoutStates(const std::vector<std::string>& names, const TContainer& container) {
    const TCIMClass* const states = container.FindClass("MOLTA_CollectionState");
    std::vector<std::string> rest;
    for (const std::string& name : names)
        if (!IsState(container.FindClass(name), states)) rest.push_back(name);
    return rest;
}

}  // namespace

class TInventory::TBody {
public:
    explicit TBody(const TSessionOptions& options) : fLog(options) {
        if (options.from.empty())
            fSession = std::make_unique<TSession>(options, fLog);
        else
            ReadFile(options.from);
    }

    TContainer& Container() { return fSession ? static_cast<TContainer&>(fSession->Container()) : fSaved; }

    void Run(const std::vector<std::string>* classes) {
        if (fSession && !fRun) fSession->Run(classes);
        if (!fSession && !fRun) NarrowStates(fSaved, classes);
        fRun = true;
    }

private:
    void ReadFile(const std::string& path) {
        TPluginManager::Initialize(".");
        ReadCollection(path, fSaved);
    }

    const TLog fLog;
    TContainer fSaved;
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
