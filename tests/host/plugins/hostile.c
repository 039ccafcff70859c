/*
 * A plugin that behaves in all but one place, where it does what its build tells: AT_LOAD, AT_INIT, AT_DATA (when two
 * instances of the first class are closed and a third is open) or AT_EXIT.
 */
#define _DEFAULT_SOURCE

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "testplugin.h"

#define BEHAVIOUR __attribute__((unused)) static void

#ifndef AT_LOAD
#define AT_LOAD Behave
#endif
#ifndef AT_INIT
#define AT_INIT Behave
#endif
#ifndef AT_DATA
#define AT_DATA Behave
#endif
#ifndef AT_EXIT
#define AT_EXIT Behave
#endif

BEHAVIOUR Behave(void) {}
__attribute__((unused)) static int* volatile gNowhere; /* so that no compiler can know where it points */
/* The fault itself, not the sanitizer's word on it. */
__attribute__((no_sanitize("undefined"))) BEHAVIOUR Crash(void) { *gNowhere = 1; }
BEHAVIOUR Abort(void) { abort(); }
BEHAVIOUR Exit(void) { exit(0); }
BEHAVIOUR ExitAtOnce(void) { _exit(3); }
BEHAVIOUR Loop(void) {
    for (volatile unsigned long i = 0;; ++i) continue;
}
BEHAVIOUR Sleep(void) { sleep(60); }
BEHAVIOUR Ignore(void) {
    signal(SIGTERM, SIG_IGN);
    Loop();
}
BEHAVIOUR Signal(void) { raise(SIGRTMAX); }
/* A set-uid program that changes its real user, too, is out of reach for signals of the host. */
BEHAVIOUR Execute(void) { execl(getenv("KYR_TEST_PROGRAM"), "setpriv", "--reuid=0", "sleep", "4", (char*)NULL); }
BEHAVIOUR Escape(void) {
    setpgid(0, getpgid(getppid()));
    Ignore();
}
BEHAVIOUR Hoard(void) {
    for (;;) memset(malloc(1 << 24), 1, 1 << 24);
}
/* By all signals but those that cannot be handled and those that stop a process; and once more by a process that is in
 * no session of its, and has ended when the host looks for it. */
BEHAVIOUR Interrupt(void) {
    const pid_t host = getppid();
    for (int number = 1; number <= SIGRTMAX; ++number)
        if (strchr("\011\022\023\024\025\026", number) == NULL) kill(host, number);
    if (fork() != 0) return;
    setsid();
    if (fork() == 0) kill(host, SIGTERM);
    _exit(0);
}
/* What is open and no file in memory, of which it may have one of its own. */
BEHAVIOUR FindDescriptors(void) {
    for (int descriptor = 3; descriptor < 1024; ++descriptor) {
        char path[64], target[128] = "";
        snprintf(path, sizeof path, "/proc/self/fd/%d", descriptor);
        if (readlink(path, target, sizeof target - 1) > 0 && strstr(target, "memfd:") == NULL) abort();
    }
}
BEHAVIOUR CloseAll(void) {
    for (int descriptor = 0; descriptor < 1024; ++descriptor) close(descriptor);
}
BEHAVIOUR Chatter(void) {
    for (int i = 0; i < 20000; ++i) printf("chatter %d\n", i);
    putchar('\0');
    fflush(stdout);
}

/* All memory that it shares with others. */
static void WithSharedMemory(void (*act)(unsigned long start, unsigned long end)) {
    char line[512];
    unsigned long start, end;
    FILE* const maps = fopen("/proc/self/maps", "r");
    while (fgets(line, sizeof line, maps) != NULL)
        if (strstr(line, " rw-s ") != NULL && sscanf(line, "%lx-%lx", &start, &end) == 2) act(start, end);
    fclose(maps);
}

static void ScribbleOver(unsigned long start, unsigned long end) {
    (void)end;
    for (unsigned long i = 16; i < 65536; ++i) ((unsigned char*)start)[i] ^= (unsigned char)(i * 7 % 251);
}
BEHAVIOUR Scribble(void) { WithSharedMemory(ScribbleOver); }

static void ShrinkFile(const char* path) {
    const int file = open(path, O_RDWR);
    (void)!ftruncate(file, 0);
    close(file);
}

static void ShrinkMapped(unsigned long start, unsigned long end) {
    char path[128];
    snprintf(path, sizeof path, "/proc/self/map_files/%lx-%lx", start, end);
    ShrinkFile(path);
}

/* All files in memory that it has open or mapped; to open what is mapped takes the superuser. */
BEHAVIOUR Shrink(void) {
    char path[128], target[128];
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        snprintf(path, sizeof path, "/proc/self/fd/%d", descriptor);
        const ssize_t length = readlink(path, target, sizeof target - 1);
        target[length < 0 ? 0 : length] = '\0';
        if (strstr(target, "memfd:") != NULL) ShrinkFile(path);
    }
    WithSharedMemory(ShrinkMapped);
}

static void* Spin(void* unused) {
    Loop();
    return unused;
}
BEHAVIOUR LeaveBehind(void) {
    pthread_t thread;
    pthread_create(&thread, NULL, Spin, NULL);
    if (fork() != 0) return;
    setsid();
    if (fork() != 0) _exit(0);
    for (;;) sleep(60);
}

static kyrIOHandle gHandle;
static const char* gFirstClass;

#ifndef TEXT_LENGTH
#define TEXT_LENGTH 200
#endif
/* Instances without end, with texts of that length. */
BEHAVIOUR Flood(void) {
    static char text[TEXT_LENGTH + 1];
    memset(text, 'x', TEXT_LENGTH);
    for (unsigned i = 0;; ++i) {
        text[sprintf(text, "%u", i)] = 'x';
        Add(gHandle, gFirstClass, text);
    }
}

static kyrStatusCode Init(kyrPluginHandle plugin) {
    (void)plugin;
    AT_INIT();
    return kyrStatusOK;
}

/* Instances of a class of another's, and of what tells how complete it all is. The one before them stays open, and is
 * stored once more each time. */
BEHAVIOUR Impose(void) {
    kyrAddClass(gHandle, "TEST_Shown");
    kyrAddClass(gHandle, "MOLTA_Collection");
}

/* A source of another's class, which it says to be missing. */
BEHAVIOUR Slander(void) {
    kyrAddClass(gHandle, "MOLTA_MissingSource");
    kyrAddStringProperty(gHandle, "ClassName", "MOLTA_ComputerSystem");
    kyrAddStringProperty(gHandle, "Source", "/forged");
}

static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    gHandle = handle;
    gFirstClass = classNames[0];
    Add(handle, classNames[0], "1");
    Add(handle, classNames[0], "2");
    kyrWriteLog(plugin, kyrLogWarning, "last words");
    Add(handle, classNames[0], "3");
    AT_DATA();
    for (uint32_t i = 1; i < count; ++i) Add(handle, classNames[i], "1");
    return kyrStatusOK;
}

__attribute__((constructor)) static void Load(void) {
    Register();
    AT_LOAD();
}

__attribute__((destructor)) static void Leave(void) { AT_EXIT(); }
