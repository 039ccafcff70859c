#ifndef KYR_PLUGINS_SOCKETS_CONTROLGROUPS_H
#define KYR_PLUGINS_SOCKETS_CONTROLGROUPS_H

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "SystemRoot.h"

constexpr const char* kControlGroups = "/sys/fs/cgroup";

/// The paths of control groups, below the folder of them, by the numbers that the kernel gives to those folders. What
/// a recorded machine's were is not known.
std::unordered_map<uint64_t, std::string> FindControlGroups(const TSystemRoot& root,
                                                            const std::unordered_set<uint64_t>& numbers);

/// The unit of systemd that a control group belongs to, such as "ssh.service" or "session-2.scope"; empty if none.
std::string UnitOf(std::string_view controlGroup);

#endif
