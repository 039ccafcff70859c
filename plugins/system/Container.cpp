#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

struct TMark {
    const char* text;
    const char* container;
};

/// Files in which a container manager writes its name.
constexpr const char* kNames[] = {"/run/systemd/container", "/run/host/container-manager"};

/// Files that a container has for others to see.
constexpr TMark kFiles[] = {{"/run/.containerenv", "podman"}, {"/.dockerenv", "docker"}};

/// What is mounted in every container of a cluster, whatever runs it.
constexpr TMark kClusterFiles[] = {{"/run/secrets/kubernetes.io", "kubernetes"},
                                   {"/var/run/secrets/kubernetes.io", "kubernetes"}};

/// Parts of the paths in which layers of a root file system are kept. Several runtimes share the last one.
constexpr TMark kLayers[] = {
    {"/docker/", "docker"}, {"/io.containerd.", "containerd"}, {"/containers/storage/", "OCI"}};

/// Parts of the control group of the first process, if the container sees the groups of its host. That of a host has
/// none of them, whatever containers it runs.
constexpr TMark kGroups[] = {{"/docker/", "docker"},
                             {"/docker-", "docker"},
                             {"/libpod", "podman"},
                             {"/lxc/", "lxc"},
                             {"/lxc.payload", "lxc"},
                             {"/kubepods", "kubernetes"},
                             {"/machine.slice/", "systemd-nspawn"}};

/// Parts of the release of the kernel.
constexpr TMark kKernels[] = {{"Microsoft", "wsl"}, {"microsoft", "wsl"}, {"WSL", "wsl"}};

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

template <size_t N>
TText FindFile(const TSystemRoot& root, const TMark (&marks)[N]) {
    for (const TMark& mark : marks)
        if (root.Exists(mark.text)) return TText::Of(mark.container, mark.text);
    return {};
}

template <size_t N>
TText FindIn(const TText& text, const TMark (&marks)[N]) {
    return text.Map([&marks](const std::string& content) -> std::optional<std::string> {
        for (const TMark& mark : marks)
            if (content.find(mark.text) != std::string::npos) return mark.container;
        return std::nullopt;
    });
}

TText FindName(const TSystemRoot& root) {
    for (const char* path : kNames)
        if (const TText name = root.ReadText(path)) return name;
    return {};
}

// Files of /proc that show a share of the machine come from lxcfs. A host has lxcfs mounted elsewhere.
std::optional<std::string> FindShare(const std::string& mounts) {
    for (const std::string_view mount : Lines(mounts))
        if (mount.find(" /proc/") != std::string_view::npos && mount.find(" - fuse.lxcfs ") != std::string_view::npos)
            return "lxc";
    return {};
}

// The host has /proc/bc too.
TText FindOpenVz(const TSystemRoot& root) {
    return root.Exists("/proc/vz") && !root.Exists("/proc/bc") ? TText::Of("openvz", "/proc/vz") : TText();
}

// It traces all that runs in it.
TText FindTracer(const TSystemRoot& root) {
    constexpr std::string_view kLine = "\nTracerPid:";
    const std::string status = root.ReadFile("/proc/self/status").ValueOr("");
    const size_t at = status.find(kLine);
    if (at == std::string::npos) return {};
    const std::string_view rest = std::string_view(status).substr(at + kLine.size());
    const uint32_t tracer = ParseNumber<uint32_t>(rest.substr(0, rest.find('\n'))).value_or(0);
    const TText name = tracer == 0 ? TText() : root.ReadText("/proc/" + std::to_string(tracer) + "/comm");
    return name.ValueOr("").substr(0, 5) == "proot" ? TText::Of("proot", name.source) : TText();
}

using TLook = TText (*)(const TSystemRoot& root, const TText& mounts);

// What names the innermost container first: its host may be a container as well.
constexpr TLook kLooks[] = {
    [](const TSystemRoot& root, const TText&) { return FindName(root); },
    [](const TSystemRoot& root, const TText&) { return FindFile(root, kFiles); },
    [](const TSystemRoot&, const TText& mounts) { return mounts.Map(FindLayers); },
    [](const TSystemRoot&, const TText& mounts) { return mounts.Map(FindShare); },
    [](const TSystemRoot& root, const TText&) { return FindIn(root.ReadText("/proc/1/cgroup"), kGroups); },
    [](const TSystemRoot& root, const TText&) { return FindFile(root, kClusterFiles); },
    [](const TSystemRoot& root, const TText&) { return FindOpenVz(root); },
    [](const TSystemRoot& root, const TText&) { return FindIn(root.ReadText("/proc/sys/kernel/osrelease"), kKernels); },
    [](const TSystemRoot& root, const TText&) { return FindTracer(root); },
};

}  // namespace

void ReadContainer(const TSystemRoot& root, TSystemFacts& facts) {
    const TText mounts = root.ReadFile("/proc/self/mountinfo");
    for (const TLook look : kLooks) {
        facts.container = look(root, mounts);
        if (facts.container) return;
    }
    facts.container = TText::Missing(mounts.absence, mounts ? kNames[0] : mounts.source);
}
