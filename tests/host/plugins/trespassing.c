/*
 * A plugin that tries all that a plugin has no business with, and some of what it has. It tells of each act, as an
 * instance of its first class, what came of it: "write: EACCES". Files are those of the folder in KYR_TEST_FOLDER.
 */
#define _GNU_SOURCE

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/keyctl.h>
#include <linux/netlink.h>
#include <linux/sched.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/msg.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <termios.h>
#include <unistd.h>

#include "testplugin.h"

static const char* PathOf(const char* name) {
    static char path[512];
    snprintf(path, sizeof path, "%s/%s", getenv("KYR_TEST_FOLDER"), name);
    return path;
}

static const char* HostPath(const char* name) {
    static char path[64];
    snprintf(path, sizeof path, "/proc/%d/%s", (int)getppid(), name);
    return path;
}

/* In a process of its own, which the act may replace or spoil. */
static int InChild(int (*act)(int), int argument) {
    int status = 0;
    const pid_t child = fork();
    if (child == 0) _exit(act(argument) < 0 ? errno : 0);
    waitpid(child, &status, 0);
    errno = WEXITSTATUS(status);
    return status == 0 ? 0 : -1;
}

static int ReplaceProcess(int file) {
    char* const arguments[] = {"true", NULL};
    return fexecve(file, arguments, environ);
}
static int Execute(int file) { return InChild(ReplaceProcess, file); }

static int ExecuteFile(void) { return Execute(open("/bin/true", O_RDONLY | O_CLOEXEC)); }

static int ExecuteMemory(void) {
    static char bytes[1 << 20];
    const int program = open("/bin/true", O_RDONLY), file = memfd_create("true", MFD_CLOEXEC);
    const ssize_t length = read(program, bytes, sizeof bytes);
    return length > 0 && write(file, bytes, (size_t)length) == length ? Execute(file) : -1;
}

static int Connect(void) {
    const struct sockaddr_un address = {AF_UNIX, "/run/nobody-listens"};
    const int status = connect(socket(AF_UNIX, SOCK_STREAM, 0), (const struct sockaddr*)&address, sizeof address);
    return status != 0 && errno == ENOENT ? 0 : status;
}

/* Of the kernel only the lower half of an argument counts that is an int. */
static int SpeakToPeers(void) {
    return (int)syscall(SYS_socket, (long)AF_NETLINK, (long)SOCK_RAW, 1L << 32 | NETLINK_USERSOCK);
}

static int BindAbstract(void) {
    const struct sockaddr_un address = {AF_UNIX, "\0kyr-test"};
    return bind(socket(AF_UNIX, SOCK_STREAM, 0), (const struct sockaddr*)&address, sizeof address);
}

/* A path that is as long as an address of Netlink lets it be. */
static int BindShortPath(int file) {
    const struct sockaddr_un address = {AF_UNIX, "bound"};
    return chdir(getenv("KYR_TEST_FOLDER")) < 0 ? -1 : bind(file, (const struct sockaddr*)&address, 12);
}
static int BindPath(void) { return InChild(BindShortPath, socket(AF_UNIX, SOCK_STREAM, 0)); }

static int Listen(void) {
    const struct sockaddr_un address = {AF_UNIX, "\0kyr-test"};
    const int file = socket(AF_UNIX, SOCK_STREAM, 0);
    bind(file, (const struct sockaddr*)&address, 12);
    return listen(file, 1);
}

static int SendSignal(void) {
    siginfo_t info = {0};
    info.si_code = SI_QUEUE;
    return (int)syscall(SYS_rt_sigqueueinfo, getppid(), 0, &info);
}

static int SignalDescriptor(void) {
    return (int)syscall(SYS_pidfd_send_signal, syscall(SYS_pidfd_open, getppid(), 0), 0, NULL, 0);
}

static int SetLimit(void) {
    struct rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    return prlimit(getppid(), RLIMIT_NOFILE, &limit, NULL);
}

static int SetOwnLimit(void) {
    const struct rlimit limit = {64, 64};
    return setrlimit(RLIMIT_NOFILE, &limit);
}

static int SetProcessors(pid_t process) {
    cpu_set_t processors;
    sched_getaffinity(0, sizeof processors, &processors);
    return sched_setaffinity(process, sizeof processors, &processors);
}
static int SetProcessorsOfHost(void) { return SetProcessors(getppid()); }
static int SetOwnProcessors(void) { return SetProcessors(0); }

static int MakeNamespace(void) {
    int status = 0;
    const long child = syscall(SYS_clone, CLONE_NEWUSER | SIGCHLD, NULL, NULL, NULL, NULL);
    if (child == 0) _exit(0);
    return child < 0 ? -1 : waitpid((pid_t)child, &status, 0) < 0;
}

static int MakeNamespaceByNewCall(void) {
    struct clone_args arguments = {0};
    arguments.flags = CLONE_NEWUSER;
    const long child = syscall(SYS_clone3, &arguments, sizeof arguments);
    if (child == 0) _exit(0);
    return child < 0 ? -1 : 0;
}

static int CommandDevice(void) {
    struct termios settings;
    const int status = ioctl(open("/dev/zero", O_RDONLY), TCGETS, &settings);
    return status != 0 && errno == ENOTTY ? 0 : status;
}

static int SetFlags(void) {
    int flags = 0;
    const int file = open(PathOf("kept"), O_RDONLY), status = ioctl(file, _IOW('f', 2, long), &flags);
    return status != 0 && errno == ENOTTY ? 0 : status;
}

static int Write(void) { return open(PathOf("new"), O_WRONLY | O_CREAT, 0600); }
static int Overwrite(void) { return open(PathOf("kept"), O_WRONLY); }
static int OpenToCut(void) { return open(PathOf("kept"), O_RDONLY | O_TRUNC); }
static int Cut(void) { return truncate(PathOf("kept"), 0); }
static int MakeFolder(void) { return mkdir(PathOf("folder"), 0700); }
static int MakeLink(void) { return symlink("kept", PathOf("link")); }
static int ChangeMode(void) { return chmod(PathOf("kept"), 0777); }
static int ChangeOwner(void) { return chown(PathOf("kept"), (uid_t)-1, getgid()); }
static int ChangeTimes(void) { return utimes(PathOf("kept"), NULL); }
static int ChangeAttribute(void) { return removexattr(PathOf("kept"), "user.none") != 0 && errno != ENODATA ? -1 : 0; }
static int MakeNode(void) { return mknod(PathOf("node"), S_IFIFO | 0600, 0); }
static int OnTwoPaths(int (*act)(const char*, const char*), const char* name, const char* other) {
    char path[512];
    strcpy(path, PathOf(name));
    return act(path, PathOf(other));
}
static int Link(void) { return OnTwoPaths(link, "kept", "other"); }
static int Rename(void) { return OnTwoPaths(rename, "kept", "kept"); }
static int Remove(void) { return unlink(PathOf("kept")); }
static int Speak(void) { return socket(AF_INET, SOCK_STREAM, 0); }
static int SpeakRaw(void) { return socket(AF_PACKET, SOCK_RAW, 0); }
static int SendDatagrams(void) { return socket(AF_UNIX, SOCK_DGRAM, 0); }
static int Signal(void) { return kill(getppid(), 0); }
static int SignalAll(void) { return kill(-1, 0); }
static int SignalThread(void) { return (int)syscall(SYS_tgkill, getppid(), getppid(), 0); }
static int TraceProcess(int process) { return (int)ptrace(PTRACE_SEIZE, process, NULL, NULL); }
static int Trace(void) { return InChild(TraceProcess, getppid()); }
static int ReadMemory(void) { return open(HostPath("mem"), O_RDONLY); }
static int WriteMemory(void) { return open(HostPath("mem"), O_RDWR); }
static int FollowDescriptor(void) {
    char target[64];
    return (int)readlink(HostPath("fd/1"), target, sizeof target);
}
static int OpenDescriptor(void) { return open(HostPath("fd/1"), O_RDONLY); }
static int SetPriority(void) { return setpriority(PRIO_PROCESS, (id_t)getppid(), getpriority(PRIO_PROCESS, 0)); }
static int SetPriorityOfAll(void) { return setpriority(PRIO_USER, 54321, 1); }
static int ShareCore(void) { return prctl(PR_SCHED_CORE, PR_SCHED_CORE_GET, 0, 0, 0); }
static int ReceiveMessage(void) { return (int)syscall(SYS_mq_timedreceive, -1, NULL, 0, NULL, NULL); }
static int Mount(void) {
    const int status = mount("none", getenv("KYR_TEST_FOLDER"), "tmpfs", 0, NULL);
    return status == 0 ? umount(getenv("KYR_TEST_FOLDER")) : status;
}
static int Unshare(void) { return InChild(unshare, CLONE_NEWUSER); }
static int UseKeys(void) {
    return syscall(SYS_keyctl, KEYCTL_GET_KEYRING_ID, KEY_SPEC_SESSION_KEYRING, 0) < 0 ? -1 : 0;
}
static int UseQueue(void) {
    const int queue = msgget(IPC_PRIVATE, 0600);
    return queue < 0 ? queue : msgctl(queue, IPC_RMID, NULL);
}
static int CallForeign(void) { return (int)syscall(0x40000000 + SYS_getppid); }
static int SetUser(int user) { return setresuid((uid_t)user, (uid_t)user, (uid_t)user); }
static int BecomeAnother(void) { return InChild(SetUser, 1); }

static int ReadFile(void) { return open("/etc/passwd", O_RDONLY); }
static int ReadKept(void) { return open(PathOf("kept"), O_RDONLY); }
static int ReadFolder(void) { return open("/sys", O_RDONLY | O_DIRECTORY); }
static int WriteNothing(void) { return fopen("/dev/null", "w") == NULL ? -1 : 0; }
static int AskSpace(void) {
    struct statvfs status;
    return statvfs("/", &status);
}
static int AskInterfaces(void) {
    struct ifaddrs* addresses;
    return getifaddrs(&addresses);
}
static int MakePair(void) {
    int pair[2];
    return socketpair(AF_UNIX, SOCK_STREAM, 0, pair);
}
static int LoadLibrary(void) { return dlopen("libm.so.6", RTLD_NOW | RTLD_LOCAL) == NULL ? -1 : 0; }
static int SignalSelf(void) { return raise(SIGCHLD); }
static int EndChild(void) {
    const pid_t child = fork();
    if (child == 0) pause();
    const int status = kill(child, SIGKILL), error = errno;
    if (status == 0) waitpid(child, NULL, 0);
    errno = error;
    return status;
}
static void* ReturnSame(void* same) { return same; }
static int MakeThread(void) {
    pthread_t thread;
    return pthread_create(&thread, NULL, ReturnSame, NULL) == 0 ? pthread_join(thread, NULL) : -1;
}

static const struct {
    const char* name;
    int (*act)(void);
} kActs[] = {
    {"write", Write},
    {"overwrite", Overwrite},
    {"open to cut", OpenToCut},
    {"cut", Cut},
    {"make folder", MakeFolder},
    {"make link", MakeLink},
    {"make node", MakeNode},
    {"link", Link},
    {"rename", Rename},
    {"change mode", ChangeMode},
    {"change owner", ChangeOwner},
    {"change times", ChangeTimes},
    {"change attribute", ChangeAttribute},
    {"set flags", SetFlags},
    {"command device", CommandDevice},
    {"speak", Speak},
    {"speak raw", SpeakRaw},
    {"speak to peers", SpeakToPeers},
    {"send datagrams", SendDatagrams},
    {"connect", Connect},
    {"bind abstract", BindAbstract},
    {"bind path", BindPath},
    {"listen", Listen},
    {"execute file", ExecuteFile},
    {"execute memory", ExecuteMemory},
    {"signal", Signal},
    {"signal all", SignalAll},
    {"signal thread", SignalThread},
    {"send signal", SendSignal},
    {"signal descriptor", SignalDescriptor},
    {"trace", Trace},
    {"read memory", ReadMemory},
    {"write memory", WriteMemory},
    {"follow descriptor", FollowDescriptor},
    {"open descriptor", OpenDescriptor},
    {"set limit", SetLimit},
    {"set processors", SetProcessorsOfHost},
    {"set priority", SetPriority},
    {"set priority of all", SetPriorityOfAll},
    {"share core", ShareCore},
    {"receive message", ReceiveMessage},
    {"mount", Mount},
    {"unshare", Unshare},
    {"make namespace", MakeNamespace},
    {"make namespace by new call", MakeNamespaceByNewCall},
    {"use keys", UseKeys},
    {"use queue", UseQueue},
    {"call foreign", CallForeign},
    {"become another", BecomeAnother},
    {"read file", ReadFile},
    {"read kept", ReadKept},
    {"read folder", ReadFolder},
    {"write nothing", WriteNothing},
    {"ask space", AskSpace},
    {"ask interfaces", AskInterfaces},
    {"make pair", MakePair},
    {"load library", LoadLibrary},
    {"signal self", SignalSelf},
    {"end child", EndChild},
    {"make thread", MakeThread},
    {"set own limit", SetOwnLimit},
    {"set own processors", SetOwnProcessors},
    {"remove", Remove},
};

static kyrStatusCode Init(kyrPluginHandle plugin) {
    (void)plugin;
    return kyrStatusOK;
}

/* Of the classes that need something the first has an instance and the others have none. */
static kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    (void)plugin;
    for (uint32_t i = 0; i < count; ++i)
        if (strcmp(classNames[i], "TEST_Program") == 0) Add(handle, classNames[i], "1");
    if (strcmp(classNames[0], "TEST_Act") != 0 || getenv("KYR_TEST_FOLDER") == NULL) return kyrStatusOK;
    for (size_t i = 0; i < sizeof kActs / sizeof *kActs; ++i) {
        char text[128];
        errno = 0;
        const int isDone = kActs[i].act() >= 0;
        snprintf(text, sizeof text, "%s: %s", kActs[i].name, isDone ? "done" : strerrorname_np(errno));
        Add(handle, "TEST_Act", text);
    }
    return kyrStatusOK;
}

__attribute__((constructor)) static void Load(void) { Register(); }
