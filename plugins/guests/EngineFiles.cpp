#include "EngineFiles.h"

std::string WithoutEnding(const std::string& name, std::string_view ending) {
    return EndsWith(name, ending) ? name.substr(0, name.size() - ending.size()) : "";
}

TFact<bool> IsAlive(const TSystemRoot& root, uint32_t process, const std::string& source) {
    const bool isThere = process != 0 && root.Exists("/proc/" + std::to_string(process));
    if (isThere || process == 0 || root.Exists("/proc/1")) return TFact<bool>::Of(isThere, source);
    const EAbsence absence = root.IsRunningMachine() ? EAbsence::eNoPermission : EAbsence::eNotPresent;
    return TFact<bool>::Missing(absence, "/proc/1");
}

TFact<bool> IsProcessOf(const TSystemRoot& root, const std::string& pidFile) {
    const TFact<uint32_t> process = root.ReadNumber<uint32_t>(pidFile);
    if (process) return IsAlive(root, *process, pidFile);
    if (process.absence == EAbsence::eNotPresent && root.Exists("/run")) return TFact<bool>::Of(false, pidFile);
    return TFact<bool>::Missing(process.absence, pidFile);
}

namespace {

constexpr const char* kGroups = "/sys/fs/cgroup";

// "populated 1" with version 2 of control groups, and the processes with version 1.
bool IsPopulated(const TSystemRoot& root, const std::string& group) {
    const TFact<std::string> events = root.ReadFile(group + "/cgroup.events", kFileLimit);
    if (events) return events->find("populated 1") != std::string::npos;
    return !root.ReadFile(group + "/cgroup.procs", kFileLimit).ValueOr("").empty();
}

// "512" of "memory: 512"
std::string_view ValueIn(std::string_view line, std::string_view key, char separator) {
    const size_t at = line.find(separator);
    return at == std::string_view::npos || Trim(line.substr(0, at)) != key ? "" : Trim(line.substr(at + 1));
}

}  // namespace

TFact<bool> IsLxcRunning(const TSystemRoot& root, const std::string& name) {
    for (const char* folder : {"/lxc.payload.", "/lxc/", "/systemd/lxc.payload.", "/systemd/lxc/"})
        if (const std::string group = kGroups + (folder + name); root.Exists(group))
            return TFact<bool>::Of(IsPopulated(root, group), group);
    if (root.Names(kGroups).empty()) return TFact<bool>::Missing(EAbsence::eNotPresent, kGroups);
    return TFact<bool>::Of(false, kGroups);
}

TFact<std::string> FindSetting(const TFact<std::string>& file, std::string_view key, char separator) {
    TFact<std::string> value = TFact<std::string>::Missing(file.absence, file.source);
    if (!file) return value;
    for (const std::string_view line : Lines(*file)) {
        if (!line.empty() && line[0] == '[') break;
        if (const std::string_view found = ValueIn(line, key, separator); !found.empty()) value.value = found;
    }
    return value;
}
