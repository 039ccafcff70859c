#ifndef KYR_PLUGINS_COMMON_SYSTEMROOT_H
#define KYR_PLUGINS_COMMON_SYSTEMROOT_H

#include <string>
#include <vector>

#include "Fact.h"
#include "Text.h"

/// An open file or folder.
class TDescriptor {
public:
    explicit TDescriptor(int number = -1) : fNumber(number) {}
    TDescriptor(const TDescriptor&) = delete;
    TDescriptor& operator=(const TDescriptor&) = delete;
    ~TDescriptor() { Reset(-1); }

    void Reset(int number);
    /// Negative, if it could not be opened.
    int Number() const { return fNumber; }

private:
    int fNumber;
};

/// The files of the machine that is described: the running one, or a copy of another's below a folder. Paths are
/// those of the machine, beginning with "/". Nothing here blocks: only regular files are read.
class TSystemRoot {
public:
    static constexpr size_t kReadLimit = 16 << 20;

    /// The folder that KYR_SYSTEM_ROOT names, or the running machine. Throws std::runtime_error if it names none.
    static TSystemRoot FromEnvironment();
    /// The empty root is the running machine.
    explicit TSystemRoot(std::string root) : fRoot(std::move(root)) {}

    /// False for a copy: then only files may be asked, and neither the kernel nor a service.
    bool IsRunningMachine() const { return fRoot.empty(); }
    /// Where a path of the machine stands; for libraries that open files themselves.
    std::string Locate(const std::string& path) const { return fRoot + path; }

    /// The whole content, up to a limit.
    TFact<std::string> ReadFile(const std::string& path, size_t limit = kReadLimit) const;
    /// The content of a file that holds one value, without blanks and line ends at its ends. Nothing left means not
    /// present.
    TFact<std::string> ReadText(const std::string& path) const;
    /// The content as a number, with or without "0x" in front if the base is 16.
    template <typename T>
    TFact<T> ReadNumber(const std::string& path, int base = 10) const;
    /// A number that says yes unless it is 0.
    TFact<bool> ReadFlag(const std::string& path) const;
    /// What a symbolic link points to, as it is written there.
    TFact<std::string> ReadLink(const std::string& path) const;
    /// The last part of it.
    TFact<std::string> ReadLinkName(const std::string& path) const;
    /// The names in a folder, numbers in them by value: eth2 stands before eth10.
    TFact<std::vector<std::string>> List(const std::string& path) const;
    /// The same names; none if the folder cannot be read.
    std::vector<std::string> Names(const std::string& path) const;
    bool Exists(const std::string& path) const;

private:
    /// The kernel gives a value whole: less than a page is its end, and there is no need to ask for more. It gives a
    /// list in pieces of any length.
    TFact<std::string> Read(const std::string& path, size_t limit, bool isValue) const;
    int Open(const std::string& path) const;

    std::string fRoot;
    /// The folder of the file that was read last: the way there is long, and most files are read beside others.
    mutable TDescriptor fFolder;
    mutable std::string fFolderPath;
};

template <typename T>
TFact<T> TSystemRoot::ReadNumber(const std::string& path, int base) const {
    return ReadText(path).Map([base](const std::string& text) { return ParseNumber<T>(text, base); });
}

#endif
