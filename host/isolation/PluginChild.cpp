#include "isolation/PluginChild.h"

#include <cstdlib>

#include "isolation/ChildLog.h"
#include "isolation/PluginContainer.h"
#include "isolation/PluginProxy.h"
#include "isolation/RecordStream.h"
#include "isolation/SystemCopy.h"
#include "kyr/ILogger.h"
#include "kyr/TCIMClass.h"
#include "kyr/TQueryManager.h"
#include "kyr/TRootObject.h"
#include "states/PluginLibrary.h"

namespace {

void PutDataCall(TRecordStream& stream, const std::vector<TCIMClass*>& classes) {
    const bool associations = classes.front()->IsAssociation();
    stream.Begin(ERecord::eAsked);
    stream.PutNumber(associations);
    for (const TCIMClass* cls : classes) stream.PutText(cls->GetName());
    stream.Commit();
    stream.SetPhase(associations ? EPhase::eAssociations : EPhase::eOrdinary);
}

void PutText(TRecordStream& stream, ERecord kind, const std::string& text) {
    stream.Begin(kind);
    stream.PutText(text);
    stream.Commit();
}

void PutPlugins(TRecordStream& stream, const TPluginReport& report) {
    for (const TPluginInfo& plugin : report.plugins) {
        stream.Begin(ERecord::ePlugin);
        stream.PutText(plugin.name);
        stream.PutText(plugin.version);
        stream.PutNumber(plugin.type);
        stream.PutNumber(plugin.initialised);
        stream.Commit();
    }
    if (report.loadFailure.empty()) return;
    PutText(stream, ERecord::eRefusal, report.loadFailure);
}

void Ask(TPluginProxy& plugin, const TPluginLibrary& library, const TPluginTask& task, TRecordStream& stream) {
    TPluginContainer& container = task.container;
    const auto putLog = [&] { PutLog(stream, task.wholeLog); };
    const auto ended = [&](const std::string& reason) {
        putLog();
        PutText(stream, ERecord::eEnded, reason);
        stream.SetCurrentClass("");
        CopySystemToPluginSchema(container);
    };
    plugin.Observe({[&](const std::vector<TCIMClass*>& classes) { PutDataCall(stream, classes); }, ended});
    container.StartStreaming(stream, putLog);
    container.SetActiveLibrary(&library);
    CopySystemToPluginSchema(container);
    TQueryManager query;
    for (const bool associations : {false, true})
        query.EnumerateInstances(&plugin, &container, task.wanted.Names(), associations);
    putLog();
}

}  // namespace

void RunPluginChild(const TPluginLibrary& library, const TPluginTask& task, TRecordStream& stream) noexcept {
    if (!task.wholeLog) TRootObject::GetCoreLogger()->SetLogThreshold(kyrLogWarning);
    SaveLogAtEnd(stream, task.wholeLog);
    TPluginReport report;
    const boost::shared_ptr<TPluginProxy> plugin = LoadLibrary(library.path, library.classes, report);
    PutPlugins(stream, report);
    PutLog(stream, task.wholeLog);
    if (plugin && !task.wanted.IsSchemaOnly()) Ask(*plugin, library, task, stream);
    stream.SetPhase(EPhase::eExiting);
    std::exit(0);  // with all destructors: those of the plugin may want to say something
}
