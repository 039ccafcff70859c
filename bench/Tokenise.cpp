#include <memory>

#include "Documents.h"
#include "Peers.h"
#include "Races.h"
#include "Tokeniser.h"

namespace {

constexpr std::size_t kBytes = 10'000'000;

template <typename TParse>
TContender InPlace(const std::string& name, const std::string& document, TParse parse) {
    auto text = std::make_shared<std::unique_ptr<TEditableText>>();
    return {name, [text, parse] { parse((*text)->Text()); },
            [text, &document] { *text = std::make_unique<TEditableText>(document); }, [text] { text->reset(); }};
}

void RaceTokeniser(TTable& table, const std::string& name, const std::string& document) {
    if (!table.Wants(name)) return;
    TRace race{name, "byte", static_cast<double>(document.size())};
    race.contenders.push_back(InPlace("kyrcore", document, Tokenise));
#ifdef KYR_BENCH_PUGIXML
    race.contenders.push_back(
        InPlace("pugixml in place", document, [size = document.size()](char* text) { ParseWithPugixml(text, size); }));
#endif
#ifdef KYR_BENCH_EXPAT
    race.contenders.push_back({"expat", [&document] { ParseWithExpat(document); }});
    race.targets.push_back({"expat", TTarget::eTime, 6, 6.5});
#endif
#ifdef KYR_BENCH_LIBXML2
    race.contenders.push_back({"libxml2 SAX", [&document] { ParseWithLibxml2Sax(document); }});
#endif
    table.Run(race);
}

}  // namespace

void RaceTokenisers(TTable& table) {
    RaceTokeniser(table, "tokenise schema", SchemaDocument(kBytes));
    RaceTokeniser(table, "tokenise data", DataDocument(kBytes / 790));
}
