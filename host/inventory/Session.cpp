#include "inventory/Session.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#include "base/ExitStatus.h"
#include "base/Locations.h"
#include "base/Output.h"
#include "inventory/Libraries.h"
#include "isolation/InProcess.h"
#include "isolation/PluginScheduler.h"
#include "isolation/SystemCopy.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TKYRException.h"
#include "kyr/TPluginManager.h"
#include "kyr/TRootObject.h"
#include "states/StateWriter.h"

namespace {

TContainer& PluginSchema() { return *TRootObject::GetPluginManager()->GetSchema(); }

// Libraries are named from inside the plugin folder: the first "lib" of a library's path is taken away to name its
// document, and must be the one in the file's own name.
void EnterPluginFolder(const std::string& path) {
    if (chdir(path.c_str()) == 0) return;
    throw TCommandError(eExitNothing, "cannot enter the plugin folder '" + path + "': " + std::strerror(errno));
}

bool BringsSystem(const TPluginLibrary& library) {
    const auto isSystem = [](const TCIMClass* cls) {
        return cls->GetName() == TCIMSchemaHelper::kSystemCreationClassName;
    };
    return std::any_of(library.classes.begin(), library.classes.end(), isSystem);
}

void Mark(TCIMClass& cls, const TCIMQualifierDecl* declaration, const std::string& text) {
    if (declaration == nullptr) return;
    std::unique_ptr<TCIMQualifier> qualifier(new TCIMQualifier(*declaration, TCIMValue(text)));
    cls.AddQualifier(*qualifier);
    // A class that is marked alike and for good keeps the mark that it has.
    if (cls.FindQualifier(declaration->GetName()) == qualifier.get()) qualifier.release();
}

// Marks the classes that the library's document brought with the plugin's name and version, as the core does where it
// reads the document itself.
void MarkClasses(const TPluginLibrary& library, const TContainer& container) {
    const TPluginInfo* const owner = library.report.FindOwner();
    if (owner == nullptr || !library.report.loadFailure.empty()) return;
    for (TCIMClass* cls : library.classes) {
        Mark(*cls, container.FindQualifierDecl("PLUGINNAME"), owner->name);
        Mark(*cls, container.FindQualifierDecl("PLUGINVERSION"), owner->version);
    }
}

}  // namespace

TSession::TSession(const TSessionOptions& options, const TCoreLog& log, TPluginContainer& container)
    : fOptions(options), fLog(log), fContainer(container) {
    TPluginManager::Initialize(".");
    ReadBaseDocument(options.schema);
    ReadBaseDocument(FindStateDocument());
    EnterPluginFolder(options.plugins);
    fLibraries = FindLibraries();
    if (fLibraries.empty()) PrintDiagnostic("no plugins in '" + options.plugins + "'");
    ReadDocuments(fLibraries, fContainer, PluginSchema(), options.limits);
}

void TSession::ReadBaseDocument(const std::string& path) {
    std::string failure;
    TLogCapture capture;
    try {
        fContainer.PopulateContainerFromFile(path);
        PluginSchema().PopulateContainerFromFile(path);
    } catch (const TKYRException& e) {
        failure = e.what();
    }
    for (const TLogLine& line : capture.Take()) {
        fLog.Print(line);
        if (line.severity == kyrLogError) PrintDiagnostic("base document: " + line.text);
    }
    if (!failure.empty()) throw TCommandError(eExitNothing, "cannot read the base document '" + path + "': " + failure);
}

// Whoever brings the computer system comes first, since others ask for its name. Whose document repeats classes of
// another comes last: they may fall to it.
TSession::TRounds TSession::FindRounds() {
    TRounds rounds(2);
    for (TPluginLibrary& library : fLibraries) {
        if (library.notLoaded.reason)
            library.report.end = library.notLoaded;
        else if (!library.duplicateClasses.empty())
            rounds.push_back({&library});
        else
            rounds[BringsSystem(library) ? 0 : 1].push_back(&library);
    }
    return rounds;
}

void TSession::Run(const TClassSelection& wanted) {
    const TRounds rounds = FindRounds();
    int interruption = 0;
    if (fOptions.inProcess)
        RunInProcess(rounds, wanted);
    else
        interruption = RunIsolated(rounds, wanted);
    for (const TPluginLibrary& library : fLibraries) MarkClasses(library, fContainer);
    WriteStates(fLibraries, wanted, interruption, fContainer);
}

// How complete it all is, a plugin does not tell.
void TSession::AssignClassesToLibraries() {
    for (const TPluginLibrary& library : fLibraries)
        for (const TCIMClass* cls : library.classes) fContainer.SetOwner(*cls, &library);
    for (const TCIMClass* cls : fContainer.GetClass(kStateClass)->EnumerateSubClasses(true))
        fContainer.SetOwner(*cls, nullptr);
}

void TSession::PrintLog(TPluginLibrary& library) const {
    for (const TLogLine& line : std::exchange(library.report.log, {}))
        fLog.Print(line, library.report.NameIn(library.path));
}

void TSession::RunInProcess(const TRounds& rounds, const TClassSelection& wanted) {
    TInProcessRun run(fContainer, fLog);
    for (const std::vector<TPluginLibrary*>& round : rounds) {
        for (TPluginLibrary* library : round) {
            ClaimClasses(*library, fLibraries);
            run.Load(*library);
        }
    }
    AssignClassesToLibraries();
    if (!wanted.IsSchemaOnly()) run.Query(wanted.Names());
}

// Gives the signal that interrupted it, or 0.
int TSession::RunIsolated(const TRounds& rounds, const TClassSelection& wanted) {
    const auto printLog = [this](const TPluginProcess& process) { PrintLog(process.Library()); };
    TPluginScheduler processes(fOptions.limits, fLibraries.size(), printLog);
    const TPluginTask task{fContainer, wanted, fLog.IsWatched(), fLog.IsInFile()};
    for (const std::vector<TPluginLibrary*>& round : rounds) {
        for (TPluginLibrary* library : round) ClaimClasses(*library, fLibraries);
        AssignClassesToLibraries();
        processes.Run(round, task);
        CopySystemToPluginSchema(fContainer);
    }
    processes.Conclude();
    return processes.Interruption();
}
