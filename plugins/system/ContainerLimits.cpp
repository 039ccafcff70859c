#include <algorithm>
#include <functional>

#include "SystemFacts.h"

namespace {

constexpr const char* kGroups = "/sys/fs/cgroup";
constexpr size_t kMostLevels = 32;
constexpr uint64_t kNoLimit = uint64_t{1} << 62;  // with version 1 a very large number

using TFolders = std::vector<std::string>;

bool HasWord(std::string_view list, std::string_view word) {
    const std::vector<std::string_view> words = Split(list, ',');
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The path in a line such as "4:memory:/docker/0f1e" or, of version 2, "0::/docker/0f1e".
std::string FindOwnGroup(const std::string& groups, std::string_view controller) {
    for (const std::string_view line : Lines(groups)) {
        const size_t first = line.find(':'), second = line.find(':', first + 1);
        if (first == std::string_view::npos || second == std::string_view::npos) continue;
        const std::string_view names = line.substr(first + 1, second - first - 1);
        if (controller.empty() ? names.empty() : HasWord(names, controller))
            return std::string(line.substr(second + 1));
    }
    return "/";
}

// The folder of the group and of all groups above it, as each of them may have a limit.
TFolders FoldersOf(const std::string& base, std::string group) {
    TFolders folders;
    while (folders.size() < kMostLevels && group.size() > 1 && group[0] == '/') {
        folders.push_back(base + group);
        group.erase(group.rfind('/'));
    }
    folders.push_back(base);
    return folders;
}

std::optional<uint64_t> ParseLimit(const std::string& text) {
    const std::optional<uint64_t> limit = ParseNumber<uint64_t>(text);
    return limit && *limit < kNoLimit ? limit : std::nullopt;
}

// "150000 100000": so many microseconds of each period.
std::optional<double> ParseShare(const std::string& text) {
    const std::vector<std::string_view> fields = Split(text, ' ');
    if (fields.size() != 2) return {};
    const std::optional<uint64_t> quota = ParseLimit(std::string(fields[0])),
                                  period = ParseLimit(std::string(fields[1]));
    if (!quota || !period || *period == 0) return {};
    return static_cast<double>(*quota) / static_cast<double>(*period);
}

TFact<std::string> ReadQuota(const TSystemRoot& root, const std::string& folder) {
    const TFact<std::string> quota = root.ReadText(folder + "/cpu.cfs_quota_us"),
                             period = root.ReadText(folder + "/cpu.cfs_period_us");
    return quota.Map([&period](const std::string& text) { return std::optional(text + ' ' + period.ValueOr("")); });
}

/// Reads the limits of one version of control groups.
class TLimitReader {
public:
    explicit TLimitReader(const TSystemRoot& root)
        : fRoot(root),
          fIsUnified(root.Exists(std::string(kGroups) + "/cgroup.controllers")),
          fOwnGroups(root.ReadFile("/proc/self/cgroup").ValueOr("")) {}

    TContainerLimits Read() const {
        return {Least("memory", ParseLimit, File("memory.max", "memory.limit_in_bytes")),
                Least("cpu", ParseShare, fIsUnified ? File("cpu.max", "") : ReadQuota),
                Nearest("cpuset", File("cpuset.cpus.effective", "cpuset.cpus")),
                Least("pids", ParseLimit, File("pids.max", "pids.max"))};
    }

private:
    using TRead = std::function<TFact<std::string>(const TSystemRoot&, const std::string&)>;

    TRead File(const char* unified, const char* legacy) const {
        const std::string name = std::string("/") + (fIsUnified ? unified : legacy);
        return [name](const TSystemRoot& root, const std::string& folder) { return root.ReadText(folder + name); };
    }

    TFolders Folders(const char* controller) const {
        if (fIsUnified) return FoldersOf(kGroups, FindOwnGroup(fOwnGroups, ""));
        return FoldersOf(std::string(kGroups) + '/' + controller, FindOwnGroup(fOwnGroups, controller));
    }

    // Without value and source if no group has such a limit; with the reason if none could be read.
    template <typename T>
    TFact<T> Least(const char* controller, std::optional<T> (*parse)(const std::string&), const TRead& read) const {
        TFact<T> least;
        bool isRead = false;
        for (const std::string& folder : Folders(controller)) {
            const TFact<std::string> text = read(fRoot, folder);
            const TFact<T> limit = text.Map(parse);
            isRead = isRead || text;
            if ((limit && (!least || *limit < *least)) || !isRead) least = limit;
        }
        return least || !isRead ? least : TFact<T>();
    }

    TFact<std::string> Nearest(const char* controller, const TRead& read) const {
        TFact<std::string> text;
        for (const std::string& folder : Folders(controller))
            if (!text) text = read(fRoot, folder);
        return text;
    }

    const TSystemRoot& fRoot;
    const bool fIsUnified;
    const std::string fOwnGroups;
};

template <typename T>
TFact<T> Unknown(const TFact<std::string>& container) {
    return TFact<T>::Missing(container.absence, container.source);
}

}  // namespace

void ReadContainerLimits(const TSystemRoot& root, TSystemFacts& facts) {
    if (facts.container) facts.limits = TLimitReader(root).Read();
    // Where nobody can see whether there is a container, there may be limits.
    if (IsUnreadable(facts.container))
        facts.limits = {Unknown<uint64_t>(facts.container), Unknown<double>(facts.container),
                        Unknown<std::string>(facts.container), Unknown<uint64_t>(facts.container)};
}
