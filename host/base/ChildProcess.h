#ifndef KYR_HOST_BASE_CHILDPROCESS_H
#define KYR_HOST_BASE_CHILDPROCESS_H

#include <sys/types.h>

#include <functional>
#include <vector>

/// How a process ended: by a signal, or by exiting.
struct TProcessEnd {
    int signal = 0;  ///< 0: it exited
    int exitStatus = 0;
};

/// A child process that runs one function. It is forked, so that the function finds a copy of all memory. Only this
/// class may wait for its children: a wait() elsewhere in the process would take their exit status from it.
class TChildProcess {
public:
    /// The child exits with status 0 when the function returns, without destructors and exit handlers. An exception
    /// that leaves the function ends it by SIGABRT, and the end of this process by SIGKILL. Raises std::system_error.
    explicit TChildProcess(const std::function<void()>& function);
    /// Kills the child and waits for it, unless that was done; for a second at most.
    ~TChildProcess();
    TChildProcess(const TChildProcess&) = delete;
    TChildProcess& operator=(const TChildProcess&) = delete;

    /// Also after the child was waited for; the system may have given the number to another process by then.
    pid_t Id() const { return fId; }
    /// Whether the child has ended, though it was not waited for.
    bool HasEnded() const;
    /// Asks the child to end, by SIGTERM.
    void Terminate() const;
    /// Ends the child, and all processes of the group that it leads, if it leads one. Must not be called once the
    /// child was waited for.
    void Kill() const;
    TProcessEnd Wait();
    /// Neither kills the child nor waits for it any more.
    void Abandon() { fWasWaitedFor = true; }

private:
    const pid_t fId;
    bool fWasWaitedFor = false;
};

/// The parent of a process; 0 if there is none, or if it cannot be told.
pid_t ParentOf(pid_t process);

/// Makes this process a subreaper: while the object exists, a descendant whose parent has ended becomes a child of this
/// process. Such processes are killed in the end. Children that this process had before are left alone.
class TSubreaper {
public:
    TSubreaper();
    ~TSubreaper();
    TSubreaper(const TSubreaper&) = delete;
    TSubreaper& operator=(const TSubreaper&) = delete;

    /// Whether the process is a descendant of this one, by a child that was not there before. As long as this process
    /// does not wait for it, that can be told of one that has ended, too; not where /proc is hidden.
    bool Includes(pid_t process) const;
    /// Kills all children but those that were there before, and waits for them, for a second at most. No TChildProcess
    /// may exist that was not waited for.
    void KillChildren() const;

private:
    bool IsExisting(pid_t child) const;

    const std::vector<pid_t> fExisting;
};

#endif
