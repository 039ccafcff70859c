#ifndef KYR_PLUGINS_STORAGE_MOUNTS_H
#define KYR_PLUGINS_STORAGE_MOUNTS_H

#include <map>
#include <set>
#include <string_view>

#include "StorageFacts.h"

inline constexpr const char* kMounts = "/proc/self/mountinfo";

/// The mounts in /proc/self/mountinfo, in the order of mounting.
TFact<std::vector<TMount>> ReadMounts(const TSystemRoot& root);
std::vector<TMount> ParseMounts(std::string_view text);
/// True if the file system is on a block device; others have the major device number 0.
bool IsOnDevice(const TMount& mount);
/// The options of the mount and of the file system without repetitions. "ro" if either of them is read-only.
std::string MergeOptions(std::string_view ofMount, std::string_view ofFileSystem);

/// Makes names unique by a number: the second "/mnt" becomes "/mnt#2".
class TUniqueNames {
public:
    std::string MakeUnique(const std::string& name);

private:
    std::set<std::string> fUsed;
    std::map<std::string, int> fNumbers;  ///< the last one of each name
};

#endif
