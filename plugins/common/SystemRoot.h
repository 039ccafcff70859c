#ifndef KYR_PLUGINS_COMMON_SYSTEMROOT_H
#define KYR_PLUGINS_COMMON_SYSTEMROOT_H

#include <string>
#include <vector>

#include "Fact.h"
#include "Text.h"

/// An open file descriptor, closed by the destructor.
class TDescriptor {
public:
    explicit TDescriptor(int number = -1) : fNumber(number) {}
    TDescriptor(const TDescriptor&) = delete;
    TDescriptor& operator=(const TDescriptor&) = delete;
    ~TDescriptor() { Reset(-1); }

    void Reset(int number);
    /// Negative if nothing is open.
    int Number() const { return fNumber; }

private:
    int fNumber;
};

/// The files of the machine that is inventoried: of the running machine, or of a recorded one below a folder. Paths are
/// absolute paths of that machine. Only regular files are read, so that no read blocks.
class TSystemRoot {
public:
    static constexpr size_t kReadLimit = 16 << 20;

    /// The folder that KYR_SYSTEM_ROOT names, or the running machine if it is not set. Throws std::runtime_error if
    /// there is no such folder.
    static TSystemRoot FromEnvironment();
    /// An empty root is the running machine.
    explicit TSystemRoot(std::string root) : fRoot(std::move(root)) {}

    /// False for a recorded machine: only its files may be read then; system calls would describe this machine.
    bool IsRunningMachine() const { return fRoot.empty(); }
    /// The path below the root; for libraries that open files themselves.
    std::string Locate(const std::string& path) const { return fRoot + path; }

    /// The whole content, up to a limit.
    TFact<std::string> ReadFile(const std::string& path, size_t limit = kReadLimit) const;
    /// The content of a file with one value, trimmed. An empty value is not present.
    TFact<std::string> ReadText(const std::string& path) const;
    /// The same as a number; in base 16 it may begin with "0x".
    template <typename T>
    TFact<T> ReadNumber(const std::string& path, int base = 10) const;
    /// A number as a flag: true unless it is 0.
    TFact<bool> ReadFlag(const std::string& path) const;
    /// The target of a symbolic link, unresolved.
    TFact<std::string> ReadLink(const std::string& path) const;
    /// The last component of the target.
    TFact<std::string> ReadLinkName(const std::string& path) const;
    /// The names in a folder in natural order: eth2 before eth10.
    TFact<std::vector<std::string>> List(const std::string& path) const;
    /// The same names of a folder in which the kernel lists all things of a kind. There are none if the kernel does not
    /// support the kind: see LacksKind. Without a kind, every kernel has the folder.
    TFact<std::vector<std::string>> ListKind(const std::string& path, const std::string& kind = "") const;
    /// Whether all things can be looked at that were listed there: most entries are links into /sys/devices.
    TListing CheckEntries(const std::string& path, const TFact<std::vector<std::string>>& names) const;
    /// Whether the kernel shows that it does not support a kind of things: there is no such folder as /sys/bus/usb, but
    /// there are others beside it.
    bool LacksKind(const std::string& kind) const;
    /// The part of a path at which reading it ends: "/sys" of "/sys/class/net/eth0" if sysfs is not mounted.
    std::string FindObstacle(const std::string& path) const;
    /// The same names; none if the folder cannot be read.
    std::vector<std::string> Names(const std::string& path) const;
    bool Exists(const std::string& path) const;

private:
    /// The kernel returns a single value (isValue) in one read, so that a read of less than a page needs no second one.
    /// Lists come in pieces of any length.
    TFact<std::string> Read(const std::string& path, size_t limit, bool isValue) const;
    int Open(const std::string& path) const;

    std::string fRoot;
    /// The folder of the file that was opened last, kept open: sysfs paths are long, and most files are read next to
    /// others of the same folder.
    mutable TDescriptor fFolder;
    mutable std::string fFolderPath;
};

template <typename T>
TFact<T> TSystemRoot::ReadNumber(const std::string& path, int base) const {
    return ReadText(path).Map([base](const std::string& text) { return ParseNumber<T>(text, base); });
}

#endif
