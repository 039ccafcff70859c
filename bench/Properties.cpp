#include <memory>

#ifdef KYR_BENCH_NLOHMANN
#include <nlohmann/json.hpp>
#endif

#include "Races.h"
#include "Records.h"

namespace {

#ifdef KYR_BENCH_NLOHMANN
using TJson = nlohmann::json;

TJson Record(unsigned number) {
    TJson record;
    record["Id"] = "id-" + std::to_string(number);
    record["Caption"] = "Hard disk drive";
    record["Manufacturer"] = "Acme";
    record["Location"] = "Enclosure 1, bay 7";
    record["Enabled"] = true;
    record["Removable"] = false;
    record["HealthState"] = number & 127;
    record["Temperature"] = -12;
    record["OperationalState"] = number & 32767;
    record["Offset"] = -1234;
    record["BlockSize"] = 4096;
    record["Blocks"] = number;
    record["Drift"] = -123456;
    record["Capacity"] = 4000787030016;
    record["Free"] = 987654321;
    record["Balance"] = -9876543210;
    record["Voltage"] = 12.25;
    record["Frequency"] = 1333.5;
    record["InstallDate"] = "20041231235959.000000+060";
    record["Names"] = {"first", "second"};
    return record;
}

TJson Records(unsigned count) {
    TJson records = TJson::array();
    for (unsigned i = 0; i < count; ++i) records.push_back(Record(i));
    return records;
}
#endif

volatile std::size_t gSink;  // results are stored here, so that the compiler cannot remove their computation

void RaceBuilding(TTable& table, unsigned count) {
    const auto ours = std::make_shared<std::unique_ptr<TRecords>>();
    TRace race{"build records", "property", 1.0 * count * kPropertiesInRecord};
    race.contenders = {{"kyrcore, C calls", [ours, count] { (*ours)->Add(count); },
                        [ours] { *ours = std::make_unique<TRecords>(); }, [ours] { ours->reset(); }}};
#ifdef KYR_BENCH_NLOHMANN
    const auto json = std::make_shared<TJson>();
    race.contenders.push_back(
        {"nlohmann::json insertion", [json, count] { *json = Records(count); }, [] {}, [json] { *json = nullptr; }});
    race.targets = {{"nlohmann::json insertion", TTarget::eTime, 0.9, 1.1},
                    {"kyrcore, C calls", TTarget::eBytesForEach, 100, 88}};
#endif
    table.Run(race);
}

void RaceDisplay(TTable& table, unsigned count) {
    TRecords records;
    records.Add(count + 1);  // the last one is not closed
    TRace race{"display records", "property", 1.0 * count * kPropertiesInRecord};
    race.contenders = {{"kyrcore, ToString", [&records] { gSink = records.DisplayAll(); }}};
#ifdef KYR_BENCH_NLOHMANN
    const TJson json = Records(count);
    race.contenders.push_back({"nlohmann::json dump", [&json] { gSink = json.dump().size(); }});
    race.targets = {{"nlohmann::json dump", TTarget::eTime, 1.6, 1.8}};
#endif
    table.Run(race);
}

}  // namespace

void RaceProperties(TTable& table, unsigned records) {
    if (table.Wants("build records")) RaceBuilding(table, records);
    if (table.Wants("display records")) RaceDisplay(table, records);
}
