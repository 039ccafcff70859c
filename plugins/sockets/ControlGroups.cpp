#include "ControlGroups.h"

#include <dirent.h>

#include <memory>
#include <vector>

namespace {

constexpr size_t kMostGroups = 20000;

struct TGroup {
    std::string path;
    uint64_t number;
};

std::vector<TGroup> GroupsIn(const TSystemRoot& root, const std::string& folder, const std::string& path) {
    std::vector<TGroup> groups;
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(root.Locate(folder + path).c_str()), closedir);
    while (const dirent* const entry = opened ? readdir(opened.get()) : nullptr)
        if (entry->d_type == DT_DIR && entry->d_name[0] != '.')
            groups.push_back({path + '/' + entry->d_name, entry->d_ino});
    return groups;
}

// With controllers of the first version, too, the hierarchy of the second lies in a folder of its own.
std::string Hierarchy(const TSystemRoot& root) {
    const std::string whole = kControlGroups;
    return root.Exists(whole + "/cgroup.controllers") ? whole : whole + "/unified";
}

}  // namespace

std::unordered_map<uint64_t, std::string> FindControlGroups(const TSystemRoot& root,
                                                            const std::unordered_set<uint64_t>& numbers) {
    std::unordered_map<uint64_t, std::string> found;
    if (numbers.empty() || !root.IsRunningMachine()) return found;
    const std::string folder = Hierarchy(root);
    std::vector<std::string> waiting{""};
    for (size_t at = 0; at < waiting.size() && at < kMostGroups && found.size() < numbers.size(); ++at)
        for (TGroup& group : GroupsIn(root, folder, std::string(waiting[at]))) {
            if (numbers.count(group.number) != 0) found.emplace(group.number, group.path);
            waiting.push_back(std::move(group.path));
        }
    return found;
}

std::string UnitOf(std::string_view controlGroup) {
    for (const std::string_view part : Split(controlGroup, '/'))
        if (EndsWith(part, ".service") || EndsWith(part, ".scope")) return std::string(part);
    return "";
}
