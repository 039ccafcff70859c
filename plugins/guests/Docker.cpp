#include "EngineFiles.h"
#include "JsonText.h"

namespace {

using TText = TFact<std::string>;

/// What is taken of the file of a container. Its command and its environment are not, as they may hold secrets.
struct TDockerContainer {
    std::string id;
    std::string name;
    std::string image;
    std::string created;
    uint32_t process = 0;
};

std::optional<TDockerContainer> Parse(const std::string& text) {
    const rapidjson::Document json = ParseJson(text);
    TDockerContainer container{FindText(json, {"ID"}), FindText(json, {"Name"}), FindText(json, {"Config", "Image"}),
                               FindText(json, {"Created"})};
    const rapidjson::Value* const process = FindMember(json, {"State", "Pid"});
    if (process != nullptr && process->IsUint()) container.process = process->GetUint();
    if (!container.name.empty() && container.name[0] == '/') container.name.erase(0, 1);
    return container.id.empty() || container.name.empty() ? std::nullopt : std::optional(container);
}

// After a crash of the machine the file still has the process of that time, whose number another one may have now. The
// control group of the right one has the name of the container.
TFact<bool> IsRunning(const TSystemRoot& root, const TFact<TDockerContainer>& container) {
    if (container->process == 0) return TFact<bool>::Of(false, container.source);
    const std::string groups = "/proc/" + std::to_string(container->process) + "/cgroup";
    const TText text = root.ReadFile(groups, kFileLimit);
    if (IsUnreadable(text)) return TFact<bool>::Missing(text.absence, groups);
    return TFact<bool>::Of(text.ValueOr("").find(container->id) != std::string::npos, groups);
}

std::optional<bool> IsRestarted(const std::string& text) {
    const std::string policy = FindText(ParseJson(text), {"RestartPolicy", "Name"});
    return policy == "always" || policy == "unless-stopped";
}

std::string FindDataFolder(const TSystemRoot& root, TEngineContainers& engine) {
    const TText settings = root.ReadFile("/etc/docker/daemon.json", kFileLimit);
    engine.MissUnreadable(settings);
    const std::string folder = settings ? FindText(ParseJson(*settings), {"data-root"}) : "";
    return folder.empty() ? "/var/lib/docker" : folder;
}

}  // namespace

TEngineContainers ReadDocker(const TSystemRoot& root) {
    TEngineContainers engine;
    TUniqueNames names;
    const std::string folder = FindDataFolder(root, engine) + "/containers";
    for (const std::string& id : ListGuests(root, folder, engine)) {
        const std::string own = folder + '/' + id;
        const TFact<TDockerContainer> found = root.ReadFile(own + "/config.v2.json", kFileLimit).Map(Parse);
        engine.MissUnreadable(found);
        if (!found) continue;
        THostedContainer container{"docker", names.For(found->name, found->id)};
        container.id = TText::Of(found->id, found.source);
        container.image = TextFact(found->image, found.source);
        container.created = TextFact(found->created, found.source).Map(ParseTime);
        container.isAutoStarted = root.ReadFile(own + "/hostconfig.json", kFileLimit).Map(IsRestarted);
        container.isRunning = IsRunning(root, found);
        engine.guests.push_back(std::move(container));
    }
    return engine;
}
