#include "export/HostKey.h"

#include <vector>

#include "base/Text.h"

namespace {

bool Differ(const std::string& a, const std::string& b) { return !a.empty() && !b.empty() && a != b; }

std::string Described(const std::string& name, const std::string& file) {
    const std::string where = file.empty() ? "" : " (" + VisibleText(file) + ")";
    return (name.empty() ? "a host without a name" : "'" + VisibleText(name) + "'") + where;
}

}  // namespace

std::string HostKeyOf(const TRun& run) {
    if (!run.machineId.empty()) return "machine-id:" + run.machineId;
    if (!run.uuid.empty()) return "uuid:" + run.uuid;
    if (!run.serial.empty()) return "serial:" + run.serial;
    return "name:" + run.name;
}

bool IsOfHost(const TRun& run, const TKnownHost& host) {
    return HostKeyOf(run) == host.key && run.name == host.name && !Differ(run.uuid, host.uuid) &&
           !Differ(run.serial, host.serial);
}

std::string CloneWarning(const TRun& run, const TKnownHost& host) {
    std::vector<std::string> shared;
    const auto add = [&shared](const char* what, const std::string& a, const std::string& b) {
        if (!a.empty() && a == b) shared.push_back(what + VisibleText(a));
    };
    add("the machine ID ", run.machineId, host.machineId);
    add("the UUID ", run.uuid, host.uuid);
    add("the serial number ", run.serial, host.serial);
    if (shared.empty() && HostKeyOf(run) == host.key) add("the name ", run.name, host.name);
    if (shared.empty()) return "";
    return Described(host.name, host.file) + " and " + Described(run.name, run.file) + " have in common " +
           Join(shared, " and ") +
           ", and are stored as two hosts; if one is a copy of the other, give it a machine ID of its own";
}
