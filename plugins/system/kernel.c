#define _POSIX_C_SOURCE 200809L

#include <stdlib.h>
#include <string.h>
#include <sys/utsname.h>

#include "facts.h"
#include "textfile.h"

static void AskKernel(SystemFacts* facts) {
    struct utsname name;
    if (uname(&name) != 0) return;
    facts->hostName = CopyTrimmed(name.nodename, strlen(name.nodename));
    facts->kernelRelease = CopyTrimmed(name.release, strlen(name.release));
    facts->kernelVersion = CopyTrimmed(name.version, strlen(name.version));
    facts->architecture = CopyTrimmed(name.machine, strlen(name.machine));
}

/* The same facts of a machine that is not the one we run on. */
static void ReadKernelFiles(const char* root, SystemFacts* facts) {
    facts->hostName = ReadTrimmedFile(root, "/proc/sys/kernel/hostname");
    facts->kernelRelease = ReadTrimmedFile(root, "/proc/sys/kernel/osrelease");
    facts->kernelVersion = ReadTrimmedFile(root, "/proc/sys/kernel/version");
    facts->architecture = ReadTrimmedFile(root, "/proc/sys/kernel/arch");
}

/* The line "btime 1700000000". */
static int64_t ReadBootTime(const char* root) {
    char* const text = ReadTextFile(root, "/proc/stat");
    if (text == NULL) return 0;
    const char* const line = strstr(text, "\nbtime ");
    const int64_t seconds = line == NULL ? 0 : strtoll(line + strlen("\nbtime "), NULL, 10);
    free(text);
    return seconds > 0 ? seconds : 0;
}

/* "12345.67 ..." */
static int64_t ReadUpTime(const char* root) {
    char* const text = ReadTrimmedFile(root, "/proc/uptime");
    if (text == NULL) return -1;
    const int64_t seconds = *text >= '0' && *text <= '9' ? strtoll(text, NULL, 10) : -1;
    free(text);
    return seconds;
}

void ReadKernel(const char* root, SystemFacts* facts) {
    if (*root == '\0')
        AskKernel(facts);
    else
        ReadKernelFiles(root, facts);
    facts->bootTime = ReadBootTime(root);
    facts->upTime = ReadUpTime(root);
}
