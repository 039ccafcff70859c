#include "inventory/Session.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "base/ExitStatus.h"
#include "base/Locations.h"
#include "base/Output.h"
#include "base/StatusWords.h"
#include "inventory/DocumentMistakes.h"
#include "inventory/Grants.h"
#include "inventory/Libraries.h"
#include "inventory/LibrarySearch.h"
#include "isolation/InProcess.h"
#include "isolation/PluginScheduler.h"
#include "isolation/Sandbox.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TCIMSchemaHelper.h"
#include "kyr/TKYRException.h"
#include "kyr/TRootObject.h"
#include "model/DateFaults.h"
#include "states/HostIdentity.h"
#include "states/InterfaceVersion.h"
#include "states/StateInstances.h"
#include "states/StateWriter.h"

namespace {

TContainer& PluginSchema() { return *TRootObject::GetPluginManager()->GetSchema(); }

std::string NamesOf(const std::vector<TPluginFolder>& folders) {
    std::string names;
    for (const TPluginFolder& folder : folders) names += (names.empty() ? "'" : ", '") + folder.path + "'";
    return names;
}

bool DeclaresSystem(const TPluginLibrary& library) {
    const auto isSystem = [](const TCIMClass* cls) {
        return cls->GetName() == TCIMSchemaHelper::kSystemCreationClassName;
    };
    return std::any_of(library.classes.begin(), library.classes.end(), isSystem);
}

void AddQualifier(TCIMClass& cls, const TCIMQualifierDecl* declaration, const std::string& text) {
    if (declaration == nullptr) return;
    std::unique_ptr<TCIMQualifier> qualifier(new TCIMQualifier(*declaration, TCIMValue(text)));
    cls.AddQualifier(*qualifier);
    // The class owns the qualifier now, unless it already had an equal one that cannot be overridden.
    if (cls.FindQualifier(declaration->GetName()) == qualifier.get()) qualifier.release();
}

// Adds the plugin's name and version to the classes of the library's document as qualifiers. The core does that only
// for documents that it reads itself.
void AddPluginQualifiers(const TPluginLibrary& library, const TContainer& container) {
    const TPluginInfo* const owner = library.report.FindOwner();
    if (!library.report.IsLoaded()) return;
    for (TCIMClass* cls : library.classes) {
        AddQualifier(*cls, container.FindQualifierDecl("PLUGINNAME"), owner->name);
        AddQualifier(*cls, container.FindQualifierDecl("PLUGINVERSION"), owner->version);
    }
}

// Of plugins that run all the same.
void TellInterfaces(TPluginLibrary& library) {
    for (const TPluginInfo& plugin : library.report.plugins) {
        const std::string text = DoubtAbout(plugin.interfaceVersion);
        if (text.empty()) continue;
        PrintDiagnostic("plugin " + plugin.name + ": " + text);
        library.report.messages.push_back({"", kyrLogWarning, text, true});
    }
}

// What the core took as it was given.
void TellDates(TPluginLibrary& library) {
    for (const TCIMClass* cls : library.classes)
        for (const TDateFault& fault : FindDateFaults(*cls)) {
            const std::string more = fault.count == 1 ? "" : " (and " + std::to_string(fault.count - 1) + " more)";
            const std::string text = cls->GetName() + "." + fault.property + ": " + fault.text + more;
            PrintDiagnostic("plugin " + library.report.NameIn(library.path) + ": " + text);
            library.report.messages.push_back({cls->GetName(), kyrLogWarning, text, true});
        }
}

}  // namespace

TSession::TSession(const TSessionOptions& options, const TCoreLog& log, TPluginContainer& container)
    : fOptions(options), fLog(log), fContainer(container) {
    ReadBaseDocument(options.schema);
    ReadBaseDocument(FindStateDocument());
    fLibraries = FindLibraries(options.plugins);
    TellWritableFolders(fLibraries);
    if (fLibraries.empty()) PrintDiagnostic("no plugins in " + NamesOf(options.plugins));
    ReadDocuments(fLibraries, fContainer, PluginSchema(), options.limits);
    ApplyGrants(options.grants, fLibraries);
}

void TSession::ReadBaseDocument(const std::string& path) {
    std::string failure;
    TLogCapture capture;
    try {
        fContainer.PopulateContainerFromFile(path);
        PluginSchema().PopulateContainerFromFile(path);
    } catch (const TKYRException& e) {
        failure = WithStatusInWords(e.what());
    }
    for (const TLogLine& line : capture.Take()) {
        fLog.Print(line);
        if (line.severity == kyrLogError) PrintDiagnostic("base document: " + WithStatusInWords(line.text));
    }
    if (!failure.empty()) throw TCommandError(eExitNothing, "cannot read the base document '" + path + "': " + failure);
}

// The library that declares the computer system runs first, because others ask for the name of the system. A library
// with duplicate classes runs last and alone: by then it is known whether the owner of the classes failed to load, so
// that it gets them.
TSession::TRounds TSession::FindRounds() {
    TRounds rounds(2);
    for (TPluginLibrary& library : fLibraries) {
        if (library.notLoaded.reason)
            library.report.end = library.notLoaded;
        else if (!library.duplicateClasses.empty())
            rounds.push_back({&library});
        else
            rounds[DeclaresSystem(library) ? 0 : 1].push_back(&library);
    }
    return rounds;
}

void TSession::Run(const TClassSelection& wanted) {
    const TRounds rounds = FindRounds();
    TCIMClass* const host = fContainer.FindClass(kHostClass);
    const TClassSelection asked = host == nullptr ? wanted : wanted.With(kHostClass);
    int interruption = 0;
    if (fOptions.inProcess)
        RunInProcess(rounds, asked);
    else
        interruption = RunIsolated(rounds, asked);
    TellTakenClasses(fLibraries, fContainer);
    for (TPluginLibrary& library : fLibraries) TellInterfaces(library);
    for (TPluginLibrary& library : fLibraries) TellDates(library);
    for (const TPluginLibrary& library : fLibraries) AddPluginQualifiers(library, fContainer);
    const auto mayReport = [this](const TCIMInstance& instance, const std::string& className) {
        const TPluginLibrary* const maker = fContainer.FindMaker(instance);
        return maker != nullptr && maker->Declares(className);
    };
    FindDocumentMistakes(fLibraries, fOptions.schema);
    WriteStates(fLibraries, TakeMissingSources(fContainer, mayReport), wanted, interruption, fContainer);
    if (host != nullptr && !wanted.Includes(kHostClass)) RemoveInstances(*host);
}

// The classes of states belong to no library, so that no plugin can make instances of them.
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
            library->LeaveOutOptional(wanted);
            if (!library->IsLeftOut()) run.Load(*library);
        }
    }
    AssignClassesToLibraries();
    if (!wanted.IsSchemaOnly()) run.Query(wanted.Names());
}

// Of all documents together.
size_t TSession::SchemaBytes() const {
    std::error_code error;
    size_t bytes = 0;
    const auto add = [&](const std::string& path) {
        const std::uintmax_t size = std::filesystem::file_size(path, error);
        if (!error) bytes += size;
    };
    for (const std::string& path : {fOptions.schema, FindStateDocument()}) add(path);
    for (const TPluginLibrary& library : fLibraries)
        if (!library.classes.empty()) add(library.FullDocumentPath());
    return bytes;
}

// Returns the signal that interrupted the collection, or 0.
int TSession::RunIsolated(const TRounds& rounds, const TClassSelection& wanted) {
    const auto printLog = [this](const TPluginProcess& process) { PrintLog(process.Library()); };
    TPluginScheduler processes(fOptions.limits, fLibraries.size(), SchemaBytes(), printLog);
    TSandbox sandbox(fOptions.sandbox);
    for (TPluginLibrary& library : fLibraries) library.isConfined = sandbox.IsOn();
    const TPluginTask task{fContainer, wanted, fLog.IsWatched(), sandbox, fLog.Descriptor()};
    for (const std::vector<TPluginLibrary*>& round : rounds) {
        std::vector<TPluginLibrary*> started;
        for (TPluginLibrary* library : round) {
            ClaimClasses(*library, fLibraries);
            library->LeaveOutOptional(wanted);
            if (!library->IsLeftOut()) started.push_back(library);
        }
        AssignClassesToLibraries();
        processes.Run(started, task);
        CopySystemToPluginSchema(fContainer);
    }
    processes.Conclude();
    return processes.Interruption();
}
