#ifndef KYR_PLUGINS_STORAGE_MOUNTS_H
#define KYR_PLUGINS_STORAGE_MOUNTS_H

#include <set>
#include <string_view>

#include "StorageFacts.h"

inline constexpr const char* kMounts = "/proc/self/mountinfo";

/// The mounts that /proc/self/mountinfo tells, in its order: what is mounted later stands behind.
TFact<std::vector<TMount>> ReadMounts(const TSystemRoot& root);
std::vector<TMount> ParseMounts(std::string_view text);
/// True if its file system is on a block device of its own; others have numbers that begin with 0.
bool IsOnDevice(const TMount& mount);
/// Options of the mount and of the file system in one line. Read-only is what either of them makes so.
std::string MergeOptions(std::string_view ofMount, std::string_view ofFileSystem);

/// Gives names that were not given before: the second "/mnt" is "/mnt#2".
class TUniqueNames {
public:
    std::string Give(const std::string& name);

private:
    std::set<std::string> fGiven;
};

#endif
