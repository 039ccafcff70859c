#include "isolation/PluginChild.h"

#include <cstdlib>

#include "inventory/Library.h"
#include "inventory/Loading.h"
#include "inventory/SystemMirror.h"
#include "isolation/ChildLog.h"
#include "isolation/StreamingContainer.h"
#include "isolation/Tape.h"
#include "kyr/ILogger.h"
#include "kyr/TCIMClass.h"
#include "kyr/TQueryManager.h"
#include "kyr/TRootObject.h"

namespace {

void PutAsked(TTape& tape, const std::vector<TCIMClass*>& classes) {
    const bool associations = classes.front()->IsAssociation();
    tape.Begin(EFrame::eAsked);
    tape.PutNumber(associations);
    for (const TCIMClass* cls : classes) tape.PutText(cls->GetName());
    tape.Commit();
    tape.SetPhase(associations ? EPhase::eAssociations : EPhase::eOrdinary);
}

void PutText(TTape& tape, EFrame kind, const std::string& text) {
    tape.Begin(kind);
    tape.PutText(text);
    tape.Commit();
}

void PutFacts(TTape& tape, const TPluginReport& report) {
    for (const TPluginFacts& plugin : report.plugins) {
        tape.Begin(EFrame::ePlugin);
        tape.PutText(plugin.name);
        tape.PutText(plugin.version);
        tape.PutNumber(plugin.type);
        tape.PutNumber(plugin.initialised);
        tape.Commit();
    }
    if (report.refusal.empty()) return;
    PutText(tape, EFrame::eRefusal, report.refusal);
}

void Ask(TStandIn& plugin, const TLibrary& library, const TPluginTask& task, TTape& tape) {
    TStreamingContainer& container = task.container;
    const auto putLog = [&] { PutLog(tape, task.wholeLog); };
    const auto ended = [&](const std::string& reason) {
        putLog();
        PutText(tape, EFrame::eEnded, reason);
        tape.SetInHand("");
        ShowSystemToPlugins(container);
    };
    plugin.Observe({[&](const std::vector<TCIMClass*>& classes) { PutAsked(tape, classes); }, ended});
    container.StartStreaming(tape, putLog);
    container.GiveTurn(&library);
    ShowSystemToPlugins(container);
    TQueryManager query;
    for (const bool associations : {false, true})
        query.EnumerateInstances(&plugin, &container, *task.classNames, associations);
    putLog();
}

}  // namespace

void RunPluginChild(const TLibrary& library, const TPluginTask& task, TTape& tape) noexcept {
    if (!task.wholeLog) TRootObject::GetCoreLogger()->SetLogThreshold(kyrLogWarning);
    SaveLogAtEnd(tape, task.wholeLog);
    TPluginReport report;
    const boost::shared_ptr<TStandIn> plugin = LoadLibrary(library.path, library.classes, report);
    PutFacts(tape, report);
    PutLog(tape, task.wholeLog);
    if (plugin && task.classNames != nullptr) Ask(*plugin, library, task, tape);
    tape.SetPhase(EPhase::eExiting);
    std::exit(0);  // with all destructors: those of the plugin may want to say something
}
