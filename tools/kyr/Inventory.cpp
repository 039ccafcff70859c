#include "Inventory.h"

#include "Conclusion.h"
#include "Log.h"
#include "SavedCollection.h"
#include "Session.h"
#include "kyr/TPluginManager.h"

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
void TInventory::Collect(const std::vector<std::string>& classes) { fBody->Run(&classes); }
EExit TInventory::Conclude() const { return TellWhatIsMissing(Container()); }
