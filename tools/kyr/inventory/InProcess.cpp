#include "inventory/InProcess.h"

#include "inventory/Library.h"
#include "inventory/Loading.h"
#include "inventory/Log.h"
#include "inventory/SystemMirror.h"
#include "isolation/StreamingContainer.h"
#include "kyr/TCIMClass.h"
#include "kyr/TQueryManager.h"
#include "lookup/ClassNames.h"

namespace {

void ReadLog(TLibrary& library, const TLog& log) {
    for (const TLogLine& line : TLog::Take()) {
        library.report.Read(line);
        log.Tell(line, library.report.NameIn(library.path));
    }
}

// The core's query, of stand-ins alone: all other plugins have no classes, or failed while they were loaded.
class TQuery : public TQueryManager {
public:
    void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                            bool associations) override {
        if (dynamic_cast<TStandIn*>(plugin) != nullptr)
            TQueryManager::EnumerateInstances(plugin, container, classNames, associations);
    }
};

}  // namespace

void LoadHere(TLibrary& library, TStreamingContainer& container, const TLog& log) {
    const boost::shared_ptr<TStandIn> plugin = LoadLibrary(library.path, library.classes, library.report);
    ReadLog(library, log);
    if (!plugin) return;
    TPluginReport& report = library.report;
    const auto asked = [&](const std::vector<TCIMClass*>& classes) {
        container.GiveTurn(&library);
        report.passes.push_back({classes.front()->IsAssociation(), NamesOf(classes)});
    };
    const auto ended = [&](const std::string& reason) {
        container.GiveTurn(nullptr);
        report.passes.back().finished = true;
        report.passes.back().end = reason;
        ReadLog(library, log);
        ShowSystemToPlugins(container);
    };
    plugin->Observe({asked, ended});
}

void QueryHere(TContainer& container, const std::vector<std::string>& classNames) {
    ShowSystemToPlugins(container);
    TQuery().RunQuery(&container, classNames);
}
