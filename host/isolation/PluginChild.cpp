#include "isolation/PluginChild.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "base/Memory.h"
#include "isolation/PluginContainer.h"
#include "isolation/PluginProxy.h"
#include "isolation/RecordStream.h"
#include "isolation/ReportRecords.h"
#include "isolation/Sandbox.h"
#include "kyr/ILogger.h"
#include "kyr/IPlugin.h"
#include "kyr/IPluginManager.h"
#include "kyr/TCIMClass.h"
#include "kyr/TQueryManager.h"
#include "kyr/TRefusedCall.h"
#include "kyr/TRootObject.h"
#include "states/PluginLibrary.h"

namespace {

constexpr rlim_t kMostMemory = rlim_t{2} << 30;
constexpr rlim_t kLargestFile = rlim_t{256} << 20;

void Limit(__rlimit_resource_t resource, rlim_t value) {
    rlimit limit{};
    if (getrlimit(resource, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max = std::min(value, limit.rlim_max);
    setrlimit(resource, &limit);
}

rlim_t MemoryLimit() {
    struct sysinfo machine {};
    if (sysinfo(&machine) != 0) return kMostMemory;
    return std::min(kMostMemory, rlim_t{machine.totalram} * machine.mem_unit / 4);
}

void SetLimits() {
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_FSIZE, kLargestFile);
    if (kIsMemoryLimitable) Limit(RLIMIT_DATA, HeapSize() + MemoryLimit());
}

// What the plugin prints must not mix with what the host prints.
void SetStreams(int printed) {
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    dup2(printed, STDOUT_FILENO);
    dup2(printed, STDERR_FILENO);
    close(null);
    close(printed);
}

// When the machine runs out of memory, the kernel is to end a plugin's process rather than another one.
void PreferForOutOfMemoryKiller() {
    const int file = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (file < 0) return;
    (void)!write(file, "1000", 4);
    close(file);
}

// The caller of the host may have had signals ignored. SIGPIPE and SIGXFSZ stay ignored: that a pipe or file takes no
// more is an error for the plugin to meet, and no reason to end it.
void ResetSignals() {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGCHLD, SIGUSR1, SIGUSR2}) std::signal(signal, SIG_DFL);
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// The core writes the log file through this descriptor. It is to write to a file of the plugin's own from now on.
void ReplaceLogFile(int own, int descriptor) {
    if (descriptor >= 0) dup2(own, descriptor);
}

// All but the standard streams and that one, which may be -1.
void CloseDescriptors(int spared) {
    const auto after = [](int descriptor) { return static_cast<unsigned>(descriptor) + 1; };
    if (spared > STDERR_FILENO + 1) close_range(STDERR_FILENO + 1, static_cast<unsigned>(spared) - 1, 0);
    close_range(std::max(after(STDERR_FILENO), after(spared)), ~0u, 0);
}

// A session of its own has no terminal and is a process group that the plugin cannot leave.
void PrepareProcess(const TPluginFiles& files, int logFile) {
    setsid();
    SetStreams(files.printed);
    ReplaceLogFile(files.log, logFile);
    SetLimits();
    PreferForOutOfMemoryKiller();
    ResetSignals();
}

// The sandbox comes when all else is set, which it would partly refuse, and before the library is opened, which runs
// code of it. It has a descriptor itself.
void EnterSandbox(const TSandbox& sandbox, TNeeds granted, const TSharedSandboxResult& result) {
    sandbox.Enter(granted, *result);
    if (!sandbox.Refusal(*result).empty()) _exit(0);
    result.Unmap();
}

// The rest of the log is saved when the process exits, gets SIGTERM or crashes. Signal handlers and exit handlers have
// no parameters, so what they need is here.
constexpr int kEndingSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGTERM};
TRecordStream* gStream = nullptr;
bool gWholeLog = false;

void PutLog() {
    for (const ILogger::TLogEntry& entry : TRootObject::GetCoreLogger()->GetLog())
        if (gWholeLog || entry.severity <= kyrLogWarning) PutLogLine(*gStream, entry);
}

void MoveLog() {
    PutLog();
    TRootObject::GetCoreLogger()->ClearLog();
}

// The core does not say how far it has come with loading a library, but the plugins that are registered show it.
void NoteLoadingPhase() {
    if (gStream->Phase() != EPhase::eLoading) return;
    const auto& plugins = TRootObject::GetPluginManager()->GetPluginsContainer();
    if (plugins.empty())
        gStream->SetPhase(EPhase::eConstructing);
    else
        gStream->SetPhase(plugins.back()->IsInitialized() ? EPhase::eDescribing : EPhase::eInitialising);
}

void SaveLogAtExit() {
    NoteLoadingPhase();
    MoveLog();
}

// Reading the log is not safe in a signal handler: the signal may have come while it was being changed. It is tried all
// the same, since committed records stay on the stream whatever happens here, and a second fault ends the process by
// the default action. No memory is allocated or freed: the heap may be locked.
void SaveLogAndEnd(int signal) {
    NoteLoadingPhase();
    PutLog();
    std::raise(signal);
}

// A stack that has overflowed leaves no room for a handler.
void UseSignalStack() {
    static char memory[65536];
    stack_t stack{};
    stack.ss_sp = memory;
    stack.ss_size = sizeof memory;
    sigaltstack(&stack, nullptr);
}

void InstallLogHandlers() {
    UseSignalStack();
    struct sigaction action {};
    action.sa_handler = SaveLogAndEnd;
    action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
    for (const int signal : kEndingSignals) sigaction(signal, &action, nullptr);
    std::atexit(SaveLogAtExit);
}

// The text of a refused call has no NUL, so that none is put that the host would refuse.
void ObserveRefusedCalls(const TPluginContainer& container) {
    TRefusedCall::Observe([&container](TRefusedCall call) {
        MoveLog();
        container.AddPlaceTo(call);
        PutRefusedCall(*gStream, call);
    });
}

void StartLog(TRecordStream& stream, bool wholeLog) {
    gStream = &stream;
    gWholeLog = wholeLog;
    if (!wholeLog) TRootObject::GetCoreLogger()->SetLogThreshold(kyrLogWarning);
    InstallLogHandlers();
}

void Ask(TPluginProxy& plugin, const TPluginLibrary& library, const TPluginTask& task, TRecordStream& stream) {
    TPluginContainer& container = task.container;
    const auto asked = [&](const std::vector<TCIMClass*>& classes) {
        PutDataCall(stream, classes);
        stream.SetPhase(classes.front()->IsAssociation() ? EPhase::eAssociations : EPhase::eOrdinary);
    };
    const auto ended = [&](const TCallFailure& failure) {
        MoveLog();
        PutDataCallEnd(stream, failure);
        stream.SetCurrentClass("");
        CopySystemToPluginSchema(container);
    };
    plugin.Observe({asked, ended});
    container.StartStreaming(stream, MoveLog);
    container.SetActiveLibrary(&library);
    CopySystemToPluginSchema(container);
    TQueryManager query;
    for (const bool associations : {false, true})
        query.EnumerateInstances(&plugin, &container, task.wanted.Names(), associations);
    MoveLog();
}

}  // namespace

void RunPluginChild(const TPluginLibrary& library, const TPluginTask& task, TRecordStream& stream,
                    const TSharedSandboxResult& result, const TPluginFiles& files) {
    task.sandbox.RestoreDumpable();
    PrepareProcess(files, task.logFile);
    EnterSandbox(task.sandbox, library.granted, result);
    CloseDescriptors(task.logFile);
    ReadPremises(library);
    StartLog(stream, task.wholeLog);
    ObserveRefusedCalls(task.container);
    TPluginReport report;
    const boost::shared_ptr<TPluginProxy> plugin = LoadLibrary(library, report);
    PutPlugins(stream, report);
    MoveLog();
    if (plugin && !task.wanted.IsSchemaOnly()) Ask(*plugin, library, task, stream);
    stream.SetPhase(EPhase::eExiting);
    std::exit(0);  // runs the plugin's destructors, which may log
}
