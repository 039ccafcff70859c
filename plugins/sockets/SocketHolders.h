#ifndef KYR_PLUGINS_SOCKETS_SOCKETHOLDERS_H
#define KYR_PLUGINS_SOCKETS_SOCKETHOLDERS_H

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "SystemRoot.h"

/// What is known of a process by its number.
struct TProcess {
    uint32_t id = 0;
    std::string name;
    std::string executable;    ///< empty if it cannot be told
    std::string controlGroup;  ///< its path below the folder of control groups
};

/// Which processes have sockets open.
class TSocketHolders {
public:
    /// Looks at the open files of all processes, unless there are no sockets.
    TSocketHolders(const TSystemRoot& root, const std::vector<uint64_t>& inodes);

    /// In the order of their numbers.
    std::vector<const TProcess*> Of(uint64_t inode) const;
    /// Why processes that were not found may be there all the same: not everybody's files could be looked at.
    const TListing& Listing() const { return fListing; }

private:
    void AddHolder(uint64_t inode, uint32_t process);
    static void Describe(const TSystemRoot& root, TProcess& process);

    std::unordered_map<uint64_t, std::vector<uint32_t>> fHolders;  // by inode
    std::unordered_map<uint32_t, TProcess> fProcesses;             // that hold one of them
    TListing fListing;
};

/// What TSocketHolders looks at, as in ValueSources.
constexpr const char* kProcessFiles = "/proc/*/fd";

#endif
