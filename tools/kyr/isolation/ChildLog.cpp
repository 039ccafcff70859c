#include "isolation/ChildLog.h"

#include <csignal>
#include <cstdlib>

#include "isolation/Tape.h"
#include "kyr/ILogger.h"
#include "kyr/IPlugin.h"
#include "kyr/IPluginManager.h"
#include "kyr/TRootObject.h"

namespace {

constexpr int kEnds[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGTERM};

TTape* gTape = nullptr;
bool gAll = false;

bool IsWanted(const ILogger::TLogEntry& entry, bool all) { return all || entry.severity <= kyrLogWarning; }

void NotePhase() {
    if (gTape->Phase() != EPhase::eLoading) return;
    const auto& plugins = TRootObject::GetPluginManager()->GetPluginsContainer();
    if (plugins.empty())
        gTape->SetPhase(EPhase::eConstructing);
    else
        gTape->SetPhase(plugins.back()->IsInitialized() ? EPhase::eDescribing : EPhase::eInitialising);
}

void CopyLog(TTape& tape, bool all) {
    for (const ILogger::TLogEntry& entry : TRootObject::GetCoreLogger()->GetLog()) {
        if (!IsWanted(entry, all)) continue;
        tape.Begin(EFrame::eLog);
        tape.PutNumber(entry.plugin == nullptr);
        tape.PutNumber(entry.severity);
        tape.PutText(entry.text);
        tape.Commit();
    }
}

void SaveLog() {
    NotePhase();
    PutLog(*gTape, gAll);
}

// The process is in no state to do this, but there is nothing to lose: what is on the tape stays, and a second fault
// ends it by the default action. No memory is taken or freed here: the heap may be locked.
void SaveLogAndEnd(int signal) {
    NotePhase();
    CopyLog(*gTape, gAll);
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

void PutLog(TTape& tape, bool all) {
    CopyLog(tape, all);
    TRootObject::GetCoreLogger()->ClearLog();
}

void SaveLogAtEnd(TTape& tape, bool all) {
    gTape = &tape;
    gAll = all;
    GiveSignalsAStack();
    struct sigaction action {};
    action.sa_handler = SaveLogAndEnd;
    action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
    for (const int signal : kEnds) sigaction(signal, &action, nullptr);
    std::atexit(SaveLog);
}
