#include "inventory/Session.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "Exit.h"
#include "command/Locations.h"
#include "inventory/InProcess.h"
#include "inventory/Libraries.h"
#include "inventory/PluginMarks.h"
#include "inventory/SystemMirror.h"
#include "isolation/PluginProcesses.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TKYRException.h"
#include "kyr/TPluginManager.h"
#include "kyr/TRootObject.h"
#include "states/StateWriter.h"
#include "text/Output.h"

namespace {

TContainer& PluginSchema() { return *TRootObject::GetPluginManager()->GetSchema(); }

// Libraries are named from inside the plugin folder: the first "lib" of a library's path is taken away to name its
// document, and must be the one in the file's own name.
void EnterPluginFolder(const std::string& path) {
    if (chdir(path.c_str()) == 0) return;
    throw TCommandError(eExitNothing, "cannot enter the plugin folder '" + path + "': " + std::strerror(errno));
}

bool BringsSystem(const TLibrary& library) {
    const auto isSystem = [](const TCIMClass* cls) {
        return cls->GetName() == TCIMSchemaHelper::kSystemCreationClassName;
    };
    return std::any_of(library.classes.begin(), library.classes.end(), isSystem);
}

}  // namespace

TSession::TSession(const TSessionOptions& options, const TLog& log, TStreamingContainer& container)
    : fOptions(options), fLog(log), fContainer(container) {
    TPluginManager::Initialize(".");
    ReadBaseDocument(options.schema);
    ReadBaseDocument(FindStateDocument());
    EnterPluginFolder(options.plugins);
    fLibraries = FindLibraries();
    if (fLibraries.empty()) Complain("no plugins in '" + options.plugins + "'");
    ReadDocuments(fLibraries, fContainer, PluginSchema(), options);
}

void TSession::ReadBaseDocument(const std::string& path) {
    std::string failure;
    try {
        fContainer.PopulateContainerFromFile(path);
        PluginSchema().PopulateContainerFromFile(path);
    } catch (const TKYRException& e) {
        failure = e.what();
    }
    for (const TLogLine& line : TLog::Take()) {
        fLog.Tell(line);
        if (line.severity == kyrLogError) Complain("base document: " + line.text);
    }
    if (!failure.empty()) throw TCommandError(eExitNothing, "cannot read the base document '" + path + "': " + failure);
}

// Whoever brings the computer system comes first, since others ask for its name. Whose document repeats classes of
// another comes last: they may fall to it.
TSession::TRounds TSession::FindRounds() {
    TRounds rounds(2);
    for (TLibrary& library : fLibraries) {
        if (!library.hindrance.reason.empty())
            library.report.end = library.hindrance;
        else if (!library.repeated.empty())
            rounds.push_back({&library});
        else
            rounds[BringsSystem(library) ? 0 : 1].push_back(&library);
    }
    return rounds;
}

void TSession::Run(const std::vector<std::string>* classNames) {
    const TRounds rounds = FindRounds();
    int interruption = 0;
    if (fOptions.inProcess)
        RunHere(rounds, classNames);
    else
        interruption = RunApart(rounds, classNames);
    for (const TLibrary& library : fLibraries) MarkClasses(library, fContainer);
    WriteStates(fLibraries, classNames, interruption, fContainer);
}

// How complete it all is, a plugin does not tell.
void TSession::ShareOutClasses() {
    for (const TLibrary& library : fLibraries)
        for (const TCIMClass* cls : library.classes) fContainer.SetOwner(*cls, &library);
    for (const TCIMClass* cls : fContainer.GetClass(kStateClass)->EnumerateSubClasses(true))
        fContainer.SetOwner(*cls, nullptr);
}

void TSession::TellLog(TLibrary& library) const {
    for (const TLogLine& line : std::exchange(library.report.log, {}))
        fLog.Tell(line, library.report.NameIn(library.path));
}

void TSession::RunHere(const TRounds& rounds, const std::vector<std::string>* classNames) {
    for (const std::vector<TLibrary*>& round : rounds) {
        for (TLibrary* library : round) {
            ClaimClasses(*library, fLibraries);
            LoadHere(*library, fContainer, fLog);
        }
    }
    ShareOutClasses();
    if (classNames != nullptr) QueryHere(fContainer, *classNames);
}

// Gives the signal that interrupted it, or 0.
int TSession::RunApart(const TRounds& rounds, const std::vector<std::string>* classNames) {
    const auto tellLog = [this](const TPluginProcess& process) { TellLog(process.Library()); };
    TPluginProcesses processes(fOptions, fLibraries.size(), tellLog);
    const TPluginTask task{fContainer, classNames, fLog.IsWatched(), fLog.IsInFile()};
    for (const std::vector<TLibrary*>& round : rounds) {
        for (TLibrary* library : round) ClaimClasses(*library, fLibraries);
        ShareOutClasses();
        processes.Run(round, task);
        ShowSystemToPlugins(fContainer);
    }
    processes.Conclude();
    return processes.Interruption();
}
