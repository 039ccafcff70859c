#include "isolation/InProcess.h"

#include "isolation/PluginContainer.h"
#include "isolation/PluginProxy.h"
#include "isolation/Sandbox.h"
#include "kyr/TCIMClass.h"
#include "kyr/TQueryManager.h"
#include "kyr/TRefusedCall.h"
#include "model/ClassNames.h"
#include "states/PluginLibrary.h"

namespace {

// Asks only plugins that have a proxy: all others have no classes, or failed while they were loaded.
class TQuery : public TQueryManager {
public:
    void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                            bool associations) override {
        if (dynamic_cast<TPluginProxy*>(plugin) != nullptr)
            TQueryManager::EnumerateInstances(plugin, container, classNames, associations);
    }
};

}  // namespace

TInProcessRun::TInProcessRun(TPluginContainer& container, const TCoreLog& log) : fContainer(container), fLog(log) {
    TRefusedCall::Observe([this](TRefusedCall call) {
        ReadLog();
        fContainer.AddPlaceTo(call);
        if (fLibrary != nullptr) fLibrary->report.AddRefusedCall(call);
    });
}

TInProcessRun::~TInProcessRun() { TRefusedCall::Observe(nullptr); }

void TInProcessRun::Load(TPluginLibrary& library) {
    fLibrary = &library;
    ReadPremises(library);
    const boost::shared_ptr<TPluginProxy> plugin = LoadLibrary(library, library.report);
    library.report.sandbox = {kNoSandboxInProcess};
    ReadLog();
    if (!plugin) return;
    const auto asked = [&](const std::vector<TCIMClass*>& classes) {
        ReadLog();
        fLibrary = &library;
        EnterFolderOf(library);
        fContainer.SetActiveLibrary(&library);
        library.report.dataCalls.push_back({classes.front()->IsAssociation(), NamesOf(classes)});
    };
    const auto ended = [&](const TCallFailure& failure) {
        fContainer.SetActiveLibrary(nullptr);
        ReadLog();
        library.report.dataCalls.back().finished = true;
        library.report.dataCalls.back().failure = failure;
        CopySystemToPluginSchema(fContainer);
    };
    plugin->Observe({asked, ended});
}

void TInProcessRun::Query(const std::vector<std::string>& classNames) {
    CopySystemToPluginSchema(fContainer);
    TQuery().RunQuery(&fContainer, classNames);
    ReadLog();
}

void TInProcessRun::ReadLog() {
    for (const TLogLine& line : fCapture.Take()) {
        if (fLibrary == nullptr) continue;
        fLibrary->report.AddLogLine(line);
        fLog.Print(line, fLibrary->report.NameIn(fLibrary->path));
    }
}
