#include "EngineFiles.h"
#include "JsonText.h"

namespace {

using TText = TFact<std::string>;

/// Where containerd keeps what it has started, by namespaces; of the distribution and of k3s.
constexpr const char* kStates[] = {"/run/containerd/io.containerd.runtime.v2.task",
                                   "/run/k3s/containerd/io.containerd.runtime.v2.task"};

// Docker lists its containers itself.
constexpr const char* kNamespaceOfDocker = "moby";

struct TAnnotations {
    std::string kind;
    std::string container;
    std::string pod;
    std::string nameSpace;
    std::string image;
};

// Nothing else is taken of the file, as commands and environments may hold secrets.
std::optional<TAnnotations> Parse(const std::string& text) {
    const rapidjson::Document json = ParseJson(text);
    if (!json.IsObject()) return {};
    const auto find = [&json](const char* name) { return FindText(json, {"annotations", name}); };
    const std::string named = find("io.kubernetes.cri.container-name");
    return TAnnotations{find("io.kubernetes.cri.container-type"), named.empty() ? find("nerdctl/name") : named,
                        find("io.kubernetes.cri.sandbox-name"), find("io.kubernetes.cri.sandbox-namespace"),
                        find("io.kubernetes.cri.image-name")};
}

class TNamespaceReader {
public:
    TNamespaceReader(const TSystemRoot& root, TEngineContainers& engine) : fRoot(root), fEngine(engine) {}

    void Read(const std::string& folder) {
        for (const std::string& id : ListGuests(fRoot, folder, fEngine)) {
            const TFact<TAnnotations> found = fRoot.ReadFile(folder + '/' + id + "/config.json", kFileLimit).Map(Parse);
            fEngine.MissUnreadable(found);
            // The sandbox of a pod only holds its network.
            if (found && found->kind != "sandbox") Add(folder + '/' + id, id, found);
        }
    }

private:
    void Add(const std::string& folder, const std::string& id, const TFact<TAnnotations>& found) {
        const std::string pod = found->pod.empty() ? "" : found->nameSpace + '/' + found->pod;
        const std::string name = found->container.empty() ? id : found->container;
        THostedContainer container{"containerd", fNames.For(pod.empty() ? name : pod + '/' + name, id)};
        container.id = TText::Of(id, folder);
        container.image = TextFact(found->image, found.source);
        if (!pod.empty()) container.pod = TText::Of(pod, found.source);
        container.isRunning = IsProcessOf(fRoot, folder + "/init.pid");
        fEngine.guests.push_back(std::move(container));
    }

    const TSystemRoot& fRoot;
    TEngineContainers& fEngine;
    TUniqueNames fNames;
};

}  // namespace

TEngineContainers ReadContainerd(const TSystemRoot& root) {
    TEngineContainers engine;
    TNamespaceReader reader(root, engine);
    for (const std::string folder : kStates)
        for (const std::string& name : ListGuests(root, folder, engine))
            if (name != kNamespaceOfDocker) reader.Read(folder + '/' + name);
    return engine;
}
