#include "EngineFiles.h"
#include "JsonText.h"

namespace {

using TText = TFact<std::string>;

constexpr const char* kFile = "/var/lib/containers/storage/overlay-containers/containers.json";
constexpr const char* kStates = "/run/containers/storage/overlay-containers";
constexpr size_t kListLimit = 16 << 20;

// Podman and CRI-O keep their containers in one list. Those of CRI-O belong to pods of a cluster.
THostedContainer ContainerOf(const TSystemRoot& root, const rapidjson::Value& entry, const std::string& id) {
    const rapidjson::Document metadata = ParseJson(FindText(entry, {"metadata"}));
    const std::string pod = FindText(metadata, {"pod-name"});
    const rapidjson::Value* const names = FindMember(entry, {"names"});
    const bool isNamed = names != nullptr && names->IsArray() && !names->Empty() && (*names)[0].IsString();
    THostedContainer container{pod.empty() ? "podman" : "cri-o", isNamed ? (*names)[0].GetString() : id};
    container.id = TText::Of(id, kFile);
    container.image = TextFact(FindText(metadata, {"image-name"}), kFile);
    container.created = TextFact(FindText(entry, {"created"}), kFile).Map(ParseTime);
    if (!pod.empty()) container.pod = TText::Of(FindText(metadata, {"namespace"}) + '/' + pod, kFile);
    container.isRunning = IsProcessOf(root, std::string(kStates) + '/' + id + "/userdata/pidfile");
    return container;
}

}  // namespace

TEngineContainers ReadPodman(const TSystemRoot& root) {
    TEngineContainers engine;
    TUniqueNames names;
    const TText file = root.ReadFile(kFile, kListLimit);
    engine.MissUnreadable(file);
    if (!file) return engine;
    const rapidjson::Document list = ParseJson(*file);
    if (!list.IsArray() || list.Size() > kMostGuests) engine.Miss(TText::Missing(EAbsence::eNotSupported, kFile));
    for (rapidjson::SizeType i = 0; list.IsArray() && i < list.Size() && i < kMostGuests; ++i) {
        const std::string id = FindText(list[i], {"id"});
        if (id.empty() || id.find('/') != std::string::npos) continue;
        engine.guests.push_back(ContainerOf(root, list[i], id));
        engine.guests.back().name = names.For(engine.guests.back().name, id);
    }
    return engine;
}
