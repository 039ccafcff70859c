#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "Documents.h"
#include "Peers.h"
#include "Races.h"
#include "kyr/TContainer.h"
#include "xml/TCIMXMLParser.h"

namespace {

constexpr std::size_t kSchemaBytes = 10'000'000;

class TScratchFile {
public:
    explicit TScratchFile(const std::string& content)
        : fPath(std::filesystem::temp_directory_path() / ("kyr-bench-" + std::to_string(std::rand()) + ".xml")) {
        std::ofstream(fPath) << content;
    }
    ~TScratchFile() { std::filesystem::remove(fPath); }
    std::string Path() const { return fPath; }

private:
    std::filesystem::path fPath;
};

/// What a round fills. It is destroyed after the timed part.
struct TRound {
    std::unique_ptr<TEditableText> text;
    std::unique_ptr<TContainer> container;
    std::shared_ptr<void> tree;

    void Clear() { *this = TRound(); }
};

TContender FromMemory(const std::string& document, const std::shared_ptr<TRound>& round) {
    return {"kyrcore from memory", [round] { TCIMXMLParser(round->container.get()).Parse(round->text->Text()); },
            [round, &document] {
                round->text = std::make_unique<TEditableText>(document);
                round->container = std::make_unique<TContainer>();
            },
            [round] { round->Clear(); }};
}

TContender FromFile(const std::string& path, const std::shared_ptr<TRound>& round) {
    return {"kyrcore from file", [round, path] { round->container->PopulateContainerFromFile(path); },
            [round] { round->container = std::make_unique<TContainer>(); }, [round] { round->Clear(); }};
}

void RacePopulate(TTable& table, const std::string& name, const std::string& document) {
    const auto round = std::make_shared<TRound>();
    const TScratchFile file(document);
    TRace race{name, "byte", static_cast<double>(document.size())};
    race.contenders = {FromMemory(document, round), FromFile(file.Path(), round)};
#ifdef KYR_BENCH_LIBXML2
    race.contenders.push_back({"libxml2 tree", [round, &document] { round->tree = BuildLibxml2Tree(document); }, [] {},
                               [round] { round->Clear(); }});
    race.targets = {{"libxml2 tree", TTarget::eTime, 1, name == "populate schema" ? 2.5 : 4.0},
                    {"libxml2 tree", TTarget::eMemory, 3, 4}};
#endif
#ifdef KYR_BENCH_EXPAT
    race.contenders.push_back({"expat, empty handlers", [&document] { ParseWithExpat(document); }});
    if (name != "populate schema") {
        race.targets.push_back({"expat, empty handlers", TTarget::eTime, 1.25, 1.5});
        race.targets.push_back({"kyrcore from memory", TTarget::eBytesForEach, 2.2, 1.9});
    }
#endif
    table.Run(race);
}

}  // namespace

void RacePopulating(TTable& table, unsigned instances) {
    if (table.Wants("populate schema")) RacePopulate(table, "populate schema", SchemaDocument(kSchemaBytes));
    const std::string name = "populate " + std::to_string(instances) + " inst.";
    if (table.Wants(name)) RacePopulate(table, name, DataDocument(instances));
}
