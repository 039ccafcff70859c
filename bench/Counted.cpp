#include <cstdio>
#include <memory>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(name)
#endif

#include "Documents.h"
#include "Links.h"
#include "Memory.h"
#include "Races.h"
#include "Records.h"
#include "Tokeniser.h"
#include "Words.h"
#include "kyr/TContainer.h"
#include "xml/TCIMXMLParser.h"

namespace {

constexpr std::size_t kBytes = 500'000;
constexpr unsigned kRecords = 500;

// Runs the case twice: the first run counts memory and fills what is initialised only once, the second counts
// instructions.
void Count(const TContender& work, const char* unit, double units) {
    work.prepare();
    TMemoryMeter meter;
    work.run();
    meter.Stop();
    work.finish();

    work.prepare();
    CALLGRIND_ZERO_STATS;
    work.run();
    CALLGRIND_DUMP_STATS_AT(work.name.c_str());
    work.finish();
    std::printf("%s|%s|%.0f|%zu|%zu\n", work.name.c_str(), unit, units, meter.Allocations(), meter.Peak());
}

void CountReading(const std::string& name, const std::string& document) {
    std::unique_ptr<TEditableText> text;
    std::unique_ptr<TContainer> container;
    const auto prepare = [&] {
        text = std::make_unique<TEditableText>(document);
        container = std::make_unique<TContainer>();
    };
    const double bytes = static_cast<double>(document.size());
    Count({"tokenise " + name, [&] { Tokenise(text->Text()); }, prepare}, "byte", bytes);
    Count({"populate " + name, [&] { TCIMXMLParser(container.get()).Parse(text->Text()); }, prepare}, "byte", bytes);
}

void CountProperties() {
    const double properties = 1.0 * kRecords * kPropertiesInRecord;
    std::unique_ptr<TRecords> records;
    const auto empty = [&] { records = std::make_unique<TRecords>(); };
    const auto fill = [&] {
        empty();
        records->Add(kRecords + 1);
    };
    Count({"build records", [&] { records->Add(kRecords); }, empty}, "property", properties);
    Count({"set one property", [&] { records->SetOneProperty(kRecords); }, fill}, "property", kRecords);
    Count({"display records", [&] { records->DisplayAll(); }, fill}, "property", properties);
    const TWords words(kRecords);
    Count({"display words", [&] { words.DisplayAll(); }}, "property", kRecords);
}

void CountWalks() {
    for (const unsigned count : {500, 5000}) {
        const TLinks links(count);
        const std::string among = std::to_string(count);
        Count({"references in " + among, [&] { links.WalkReferences(); }}, "walk", kWalks);
        Count({"associators in " + among, [&] { links.WalkAssociators(); }}, "walk", kWalks);
    }
}

}  // namespace

void PrintCounted() {
    CountReading("schema", SchemaDocument(kBytes));
    CountReading("data", DataDocument(kBytes / 790));
    CountReading("full schema", SchemaDocument(kBytes, EDocument::eFull));
    CountReading("full data", DataDocument(kBytes / 1950, EDocument::eFull));
    CountProperties();
    CountWalks();
}
