#include "isolation/ChildLog.h"

#include <csignal>
#include <cstdlib>

#include "isolation/RecordStream.h"
#include "kyr/ILogger.h"
#include "kyr/IPlugin.h"
#include "kyr/IPluginManager.h"
#include "kyr/TRootObject.h"

namespace {

constexpr int kEnds[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGTERM};

TRecordStream* gStream = nullptr;
bool gAll = false;

bool IsWanted(const ILogger::TLogEntry& entry, bool all) { return all || entry.severity <= kyrLogWarning; }

void NotePhase() {
    if (gStream->Phase() != EPhase::eLoading) return;
    const auto& plugins = TRootObject::GetPluginManager()->GetPluginsContainer();
    if (plugins.empty())
        gStream->SetPhase(EPhase::eConstructing);
    else
        gStream->SetPhase(plugins.back()->IsInitialized() ? EPhase::eDescribing : EPhase::eInitialising);
}

void CopyLog(TRecordStream& stream, bool all) {
    for (const ILogger::TLogEntry& entry : TRootObject::GetCoreLogger()->GetLog()) {
        if (!IsWanted(entry, all)) continue;
        stream.Begin(ERecord::eLog);
        stream.PutNumber(entry.plugin == nullptr);
        stream.PutNumber(entry.severity);
        stream.PutText(entry.text);
        stream.Commit();
    }
}

void SaveLog() {
    NotePhase();
    PutLog(*gStream, gAll);
}

// The process is in no state to do this, but there is nothing to lose: what is on the stream stays, and a second fault
// ends it by the default action. No memory is taken or freed here: the heap may be locked.
void SaveLogAndEnd(int signal) {
    NotePhase();
    CopyLog(*gStream, gAll);
    std::raise(signal);
}

void GiveSignalsAStack() {
    static char memory[65536];
    stack_t stack{};
    stack.ss_sp = memory;
    stack.ss_size = sizeof memory;
    sigaltstack(&stack, nullptr);
}

}  // namespace

void PutLog(TRecordStream& stream, bool all) {
    CopyLog(stream, all);
    TRootObject::GetCoreLogger()->ClearLog();
}

void SaveLogAtEnd(TRecordStream& stream, bool all) {
    gStream = &stream;
    gAll = all;
    GiveSignalsAStack();
    struct sigaction action {};
    action.sa_handler = SaveLogAndEnd;
    action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
    for (const int signal : kEnds) sigaction(signal, &action, nullptr);
    std::atexit(SaveLog);
}
