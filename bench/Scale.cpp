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
        sets.targets.push_back({name, TTarget::eGrowth, 1.25, 1.1});
        additions.contenders.push_back({name, [store] { store->Add(kNewInstances); }});
        additions.targets.push_back({name, TTarget::eGrowth, 2, 1.25});
    }
    sets.targets.erase(sets.targets.begin());  // the smallest is what the others are compared with
    additions.targets.erase(additions.targets.begin());
    table.Run(sets);
    table.Run(additions);
}
