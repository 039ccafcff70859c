#include "isolation/RefusedCalls.h"

#include <fcntl.h>
#include <linux/netlink.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <cerrno>
#include <initializer_list>

#include "isolation/Landlock.h"

namespace {

using TRules = std::vector<TRefusedCall>;

constexpr int kIoPriorityOfProcess = 1;  // IOPRIO_WHO_PROCESS

// Calls that are refused whatever their arguments.
struct TGroup {
    TNeeds unlessGranted;
    std::initializer_list<int> numbers;
};

const TGroup kGroups[] = {
    // Programs. Landlock stops those in files, but not one in memory.
    {eNeedsExec, {SCMP_SYS(execve), SCMP_SYS(execveat)}},
    {eNeedsNetwork, {SCMP_SYS(connect), SCMP_SYS(listen)}},
    {eNeedsRawIo, {SCMP_SYS(iopl), SCMP_SYS(ioperm)}},
    // What is mounted, and the namespaces
    {0,
     {SCMP_SYS(mount), SCMP_SYS(umount2), SCMP_SYS(move_mount), SCMP_SYS(open_tree), SCMP_SYS(fsopen),
      SCMP_SYS(fsconfig), SCMP_SYS(fsmount), SCMP_SYS(fspick), SCMP_SYS(mount_setattr), SCMP_SYS(pivot_root),
      SCMP_SYS(chroot), SCMP_SYS(setns), SCMP_SYS(unshare), SCMP_SYS(swapon), SCMP_SYS(swapoff), SCMP_SYS(quotactl),
      SCMP_SYS(quotactl_fd)}},
    // Other processes
    {0,
     {SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev), SCMP_SYS(process_madvise),
      SCMP_SYS(process_mrelease), SCMP_SYS(pidfd_getfd), SCMP_SYS(kcmp), SCMP_SYS(migrate_pages),
      SCMP_SYS(move_pages)}},
    // The kernel and the clock
    {0,
     {SCMP_SYS(bpf),
      SCMP_SYS(perf_event_open),
      SCMP_SYS(userfaultfd),
      SCMP_SYS(fanotify_init),
      SCMP_SYS(io_uring_setup),
      SCMP_SYS(io_uring_enter),
      SCMP_SYS(io_uring_register),
      SCMP_SYS(init_module),
      SCMP_SYS(finit_module),
      SCMP_SYS(delete_module),
      SCMP_SYS(kexec_load),
      SCMP_SYS(kexec_file_load),
      SCMP_SYS(reboot),
      SCMP_SYS(acct),
      SCMP_SYS(sethostname),
      SCMP_SYS(setdomainname),
      SCMP_SYS(vhangup),
      SCMP_SYS(clock_settime),
      SCMP_SYS(settimeofday),
      SCMP_SYS(add_key),
      SCMP_SYS(request_key),
      SCMP_SYS(keyctl)}},
    // Owner, mode, times and attributes of files, which Landlock does not limit
    {0,
     {SCMP_SYS(chmod), SCMP_SYS(fchmod), SCMP_SYS(fchmodat), SCMP_SYS(chown), SCMP_SYS(fchown), SCMP_SYS(lchown),
      SCMP_SYS(fchownat), SCMP_SYS(utime), SCMP_SYS(utimes), SCMP_SYS(futimesat), SCMP_SYS(utimensat),
      SCMP_SYS(setxattr), SCMP_SYS(lsetxattr), SCMP_SYS(fsetxattr), SCMP_SYS(removexattr), SCMP_SYS(lremovexattr),
      SCMP_SYS(fremovexattr), SCMP_SYS(truncate), SCMP_SYS(open_by_handle_at)}},
    // The same in calls that libseccomp of Debian 12 has no names for: fchmodat2, setxattrat, removexattrat,
    // open_tree_attr and file_setattr
    {0, {452, 463, 466, 467, 469}},
    // Memory, semaphores and queues that other processes use
    {0,
     {SCMP_SYS(shmget), SCMP_SYS(shmat), SCMP_SYS(shmctl), SCMP_SYS(semget), SCMP_SYS(semop), SCMP_SYS(semtimedop),
      SCMP_SYS(semctl), SCMP_SYS(msgget), SCMP_SYS(msgsnd), SCMP_SYS(msgrcv), SCMP_SYS(msgctl), SCMP_SYS(mq_open),
      SCMP_SYS(mq_unlink), SCMP_SYS(mq_timedsend), SCMP_SYS(mq_timedreceive), SCMP_SYS(mq_notify)}},
};

// Flags of clone that make a namespace. Those of clone3 are in memory, where no filter can see them, so that call is
// told to be missing: the C library then takes the other one.
constexpr unsigned kNamespaceFlags[] = {CLONE_NEWNS,  CLONE_NEWUSER, CLONE_NEWPID,   CLONE_NEWNET,
                                        CLONE_NEWIPC, CLONE_NEWUTS,  CLONE_NEWCGROUP};

// Commands that change something though the file is open for reading: kind and number, without the size of what goes
// with them.
constexpr unsigned kCommands[] = {
    0x6602, 0x7602, 0x5820,                          // attributes of a file, its version, its project
    0x6685, 0x6613,                                  // seals of a file, the encryption of a folder
    0x9401, 0x940e, 0x940f, 0x9417, 0x9418, 0x941a,  // making, removing and changing volumes of Btrfs
    0x943f, 0x5412,                                  // removing one, typing on a terminal
    0x5877, 0x5878, 0x5879, 0x587d,                  // freezing, thawing, trimming and stopping a file system
    0x8901, 0x8902,                                  // whom a socket signals
};

constexpr unsigned kTypeOfSocket = 0xf;
constexpr unsigned kAllBits = 0xffffffff;  // of an int: the kernel does not look at the others

scmp_arg_cmp HasBits(unsigned argument, scmp_datum_t mask, scmp_datum_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, value};
}
scmp_arg_cmp IsOther(unsigned argument, scmp_datum_t value) { return {argument, SCMP_CMP_NE, value, 0}; }
scmp_arg_cmp Is(unsigned argument, scmp_datum_t value) { return {argument, SCMP_CMP_EQ, value, 0}; }

void AddGroups(TRules& rules) {
    for (const TGroup& group : kGroups)
        for (const int number : group.numbers) rules.push_back({number, group.unlessGranted});
}

// Of the families of sockets those stay that ask the kernel, and connected pairs. One protocol of Netlink is for
// processes among themselves. A socket for datagrams would reach daemons without being connected. An address of Netlink
// has another length than those that others can be found at.
void AddSockets(TRules& rules) {
    for (int family = AF_UNSPEC; family < AF_NETLINK; ++family) {
        const bool isInternet = family == AF_INET || family == AF_INET6;
        if (family != AF_UNIX)
            rules.push_back({SCMP_SYS(socket), isInternet ? eNeedsNetwork : 0u, {Is(0, family)}, EAFNOSUPPORT});
    }
    rules.push_back({SCMP_SYS(socket), 0, {{0, SCMP_CMP_GT, AF_NETLINK, 0}}, EAFNOSUPPORT});
    for (const unsigned type : {SOCK_DGRAM, SOCK_RAW}) {
        rules.push_back({SCMP_SYS(socket), eNeedsNetwork, {Is(0, AF_UNIX), HasBits(1, kTypeOfSocket, type)}});
        rules.push_back({SCMP_SYS(socketpair), eNeedsNetwork, {HasBits(1, kTypeOfSocket, type)}});
    }
    rules.push_back({SCMP_SYS(socket), eNeedsNetwork, {Is(0, AF_NETLINK), HasBits(2, kAllBits, NETLINK_USERSOCK)}});
    rules.push_back({SCMP_SYS(bind), eNeedsNetwork, {IsOther(2, sizeof(sockaddr_nl))}});
}

void AddNamespaces(TRules& rules) {
    for (const unsigned flag : kNamespaceFlags) rules.push_back({SCMP_SYS(clone), 0, {HasBits(0, flag, flag)}});
    rules.push_back({SCMP_SYS(clone3), 0, {}, ENOSYS});
}

// Limits and priorities: 0 stands for the process that calls. One call of prctl tells which processes may run on the
// threads of a core together.
void AddPriorities(TRules& rules) {
    for (const int number : {SCMP_SYS(prlimit64), SCMP_SYS(sched_setaffinity), SCMP_SYS(sched_setscheduler),
                             SCMP_SYS(sched_setparam), SCMP_SYS(sched_setattr)})
        rules.push_back({number, 0, {IsOther(0, 0)}});
    rules.push_back({SCMP_SYS(setpriority), 0, {IsOther(0, PRIO_PROCESS)}});
    rules.push_back({SCMP_SYS(ioprio_set), 0, {IsOther(0, kIoPriorityOfProcess)}});
    for (const int number : {SCMP_SYS(setpriority), SCMP_SYS(ioprio_set)})
        rules.push_back({number, 0, {IsOther(1, 0)}});
    rules.push_back({SCMP_SYS(prctl), 0, {HasBits(0, kAllBits, PR_SCHED_CORE)}});
}

// A lease holds up everybody else who opens the file.
void AddCommands(TRules& rules) {
    rules.push_back({SCMP_SYS(fcntl), 0, {HasBits(1, kAllBits, F_SETLEASE)}});
    for (const unsigned command : kCommands) rules.push_back({SCMP_SYS(ioctl), 0, {HasBits(1, 0xffff, command)}});
}

// Landlock lets a process signal those that it has started. This can only tell it from all others.
void AddSignals(TRules& rules) {
    constexpr int kLandlock = TLandlock::kLimitsSignals;
    for (const int number :
         {SCMP_SYS(kill), SCMP_SYS(tkill), SCMP_SYS(tgkill), SCMP_SYS(rt_sigqueueinfo), SCMP_SYS(rt_tgsigqueueinfo)})
        rules.push_back({number, 0, {IsOther(0, kOwnProcess)}, EPERM, kLandlock});
    rules.push_back({SCMP_SYS(pidfd_send_signal), 0, {}, EPERM, kLandlock});
    for (const int command : {F_SETOWN, F_SETOWN_EX})
        rules.push_back({SCMP_SYS(fcntl), 0, {HasBits(1, kAllBits, command)}, EPERM, kLandlock});
}

// A file that is opened for reading can be cut off by that. The flags of openat2 are in memory.
void AddTruncating(TRules& rules) {
    constexpr int kLandlock = TLandlock::kLimitsTruncating;
    rules.push_back({SCMP_SYS(open), 0, {HasBits(1, O_TRUNC, O_TRUNC)}, EPERM, kLandlock});
    rules.push_back({SCMP_SYS(openat), 0, {HasBits(2, O_TRUNC, O_TRUNC)}, EPERM, kLandlock});
    rules.push_back({SCMP_SYS(openat2), 0, {}, ENOSYS, kLandlock});
}

// What Landlock refuses by paths, for processes that do without it: to open files for writing, to make, move and remove
// them, and commands to devices. A Unix socket makes a file where it is bound.
const int kChangesOfFiles[] = {SCMP_SYS(creat),     SCMP_SYS(mkdir),    SCMP_SYS(mkdirat),  SCMP_SYS(mknod),
                               SCMP_SYS(mknodat),   SCMP_SYS(link),     SCMP_SYS(linkat),   SCMP_SYS(symlink),
                               SCMP_SYS(symlinkat), SCMP_SYS(rename),   SCMP_SYS(renameat), SCMP_SYS(renameat2),
                               SCMP_SYS(unlink),    SCMP_SYS(unlinkat), SCMP_SYS(rmdir)};
constexpr unsigned kWritingFlags[] = {O_WRONLY, O_RDWR, O_CREAT};

void AddWriting(TRules& rules) {
    const auto refuse = [&rules](int number, TNeeds unless, std::vector<scmp_arg_cmp> when) {
        rules.push_back({number, unless, std::move(when), EPERM, 0, eNeedsProcesses});
    };
    for (const int number : kChangesOfFiles) refuse(number, 0, {});
    for (const unsigned flag : kWritingFlags) {
        refuse(SCMP_SYS(open), 0, {HasBits(1, flag, flag)});
        refuse(SCMP_SYS(openat), 0, {HasBits(2, flag, flag)});
    }
    refuse(SCMP_SYS(ioctl), eNeedsRawIo, {});
    refuse(SCMP_SYS(bind), eNeedsNetwork, {});
}

TRules MakeRules() {
    TRules rules;
    for (const auto add :
         {AddGroups, AddSockets, AddNamespaces, AddPriorities, AddCommands, AddSignals, AddTruncating, AddWriting})
        add(rules);
    return rules;
}

}  // namespace

const std::vector<TRefusedCall>& RefusedCalls() {
    static const TRules rules = MakeRules();
    return rules;
}
