#include "Mounts.h"

#include <algorithm>

namespace {

// Unlike Split, keeps empty fields: the source of a mount may be empty.
std::vector<std::string_view> Fields(std::string_view line) {
    std::vector<std::string_view> fields;
    for (size_t end = 0; end != std::string_view::npos; line.remove_prefix(end + 1)) {
        end = line.find(' ');
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos) break;
    }
    return fields;
}

bool HasOption(std::string_view options, std::string_view option) {
    const std::vector<std::string_view> all = Split(options, ',');
    return std::find(all.begin(), all.end(), option) != all.end();
}

void AppendOptions(std::string_view options, std::string& line) {
    for (const std::string_view option : Split(options, ','))
        if (option != "rw" && option != "ro" && !HasOption(line, option)) line.append(",").append(option);
}

// id, parent id, device number, root, mount point, options, tags, "-", type, source, options of the file system
std::optional<TMount> ParseMount(std::string_view line) {
    const std::vector<std::string_view> fields = Fields(line);
    const size_t dash = static_cast<size_t>(std::find(fields.begin(), fields.end(), "-") - fields.begin());
    if (dash < 6 || fields.size() < dash + 4) return std::nullopt;
    TMount mount;
    mount.id = fields[0];
    mount.parentId = fields[1];
    mount.number = fields[2];
    mount.root = UnescapeOctal(fields[3]);
    mount.point = UnescapeOctal(fields[4]);
    mount.type = UnescapeOctal(fields[dash + 1]);
    mount.source = UnescapeOctal(fields[dash + 2]);
    mount.options = UnescapeOctal(MergeOptions(fields[5], fields[dash + 3]));
    mount.readOnly = mount.options.substr(0, 2) == "ro";
    return mount;
}

using TMountPoint = std::pair<std::string, std::string>;  // id of the parent mount, path

void MarkCovered(std::vector<TMount>& mounts) {
    std::set<TMountPoint> occupied;
    for (const TMount& mount : mounts)
        if (mount.parentId != mount.id) occupied.insert({mount.parentId, mount.point});
    for (TMount& mount : mounts) mount.covered = occupied.count({mount.id, mount.point}) > 0;
}

}  // namespace

TFact<std::vector<TMount>> ReadMounts(const TSystemRoot& root) {
    return NeverEmpty(root.ReadFile(kMounts)).Map([](const std::string& text) {
        return std::optional(ParseMounts(text));
    });
}

std::vector<TMount> ParseMounts(std::string_view text) {
    std::vector<TMount> mounts;
    TUniqueNames names;
    for (const std::string_view line : Lines(text)) {
        std::optional<TMount> mount = ParseMount(line);
        if (!mount) continue;
        mount->name = names.MakeUnique(mount->point);
        mounts.push_back(std::move(*mount));
    }
    MarkCovered(mounts);
    return mounts;
}

bool IsOnDevice(const TMount& mount) { return mount.number.substr(0, 2) != "0:"; }

std::string MergeOptions(std::string_view ofMount, std::string_view ofFileSystem) {
    std::string line = HasOption(ofMount, "ro") || HasOption(ofFileSystem, "ro") ? "ro" : "rw";
    AppendOptions(ofMount, line);
    AppendOptions(ofFileSystem, line);
    return line;
}

std::string TUniqueNames::MakeUnique(const std::string& name) {
    std::string unique = name;
    int& number = fNumbers.try_emplace(name, 1).first->second;
    while (!fUsed.insert(unique).second) unique = name + "#" + std::to_string(++number);
    return unique;
}
