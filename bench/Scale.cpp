#include <memory>

#include "Races.h"
#include "Records.h"

namespace {

constexpr unsigned kSets = 100'000;
constexpr unsigned kNewInstances = 500;

}  // namespace

void RaceScale(TTable& table, bool large) {
    if (!table.Wants("set one property") && !table.Wants("add an instance")) return;
    TRace sets{"set one property", "property", kSets};
    TRace additions{"add an instance", "property", 1.0 * kNewInstances * kPropertiesInRecord};
    for (unsigned count : {1'000u, 10'000u, 100'000u, 1'000'000u}) {
        if (count > 100'000 && !large) continue;
        const auto store = std::make_shared<TRecords>();
        store->Add(count);
        const std::string name = std::to_string(count) + " stored";
        sets.contenders.push_back({name, [store] { store->SetOneProperty(kSets); }});
        sets.bars.push_back({name, TBar::eGrowth, 1.25, 1.1});
        additions.contenders.push_back({name, [store] { store->Add(kNewInstances); }});
        additions.bars.push_back({name, TBar::eGrowth, 2, 1.25});
    }
    sets.bars.erase(sets.bars.begin());  // the smallest store is what the others are held to
    additions.bars.erase(additions.bars.begin());
    table.Run(sets);
    table.Run(additions);
}
