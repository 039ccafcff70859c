#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

struct TMark {
    const char* text;
    const char* container;
};

/// Files that a container has for others to see.
constexpr TMark kFiles[] = {{"/run/.containerenv", "podman"}, {"/.dockerenv", "docker"}};

/// Parts of the paths in which layers of a root file system are kept. Several runtimes share the last one.
constexpr TMark kLayers[] = {
    {"/docker/", "docker"}, {"/io.containerd.", "containerd"}, {"/containers/storage/", "OCI"}};

bool IsRoot(std::string_view mount) {
    const std::vector<std::string_view> fields = Split(mount, ' ');
    return fields.size() > 4 && fields[4] == "/";
}

std::optional<std::string> FindLayers(const std::string& mounts) {
    for (const std::string_view mount : Lines(mounts))
        for (const TMark& mark : kLayers)
            if (mount.find(mark.text) != std::string_view::npos && IsRoot(mount)) return mark.container;
    return {};
}

}  // namespace

void ReadContainer(const TSystemRoot& root, TSystemFacts& facts) {
    facts.container = root.ReadText("/run/systemd/container");
    for (const TMark& mark : kFiles)
        if (!facts.container && root.Exists(mark.text)) facts.container = TText::Of(mark.container, mark.text);
    if (facts.container) return;
    const TText mounts = root.ReadFile("/proc/self/mountinfo");
    const TText layers = mounts.Map(FindLayers);
    if (layers || !mounts) facts.container = layers;
}
