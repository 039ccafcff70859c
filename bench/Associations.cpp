#include <cstdio>
#include <cstdlib>
#include <memory>

#ifdef KYR_BENCH_SQLITE
#include <sqlite3.h>
#endif

#include "Links.h"
#include "Races.h"

namespace {

void Expect(std::size_t found) {
    if (found == kWalks) return;
    std::fprintf(stderr, "kyr-bench: %zu ends found in %u walks\n", found, kWalks);
    std::exit(1);
}

#ifdef KYR_BENCH_SQLITE
/// The same associations as rows of an SQL table.
class TSqliteLinks {
public:
    TSqliteLinks(unsigned count, std::vector<std::string> starts) : fStarts(std::move(starts)) {
        sqlite3_open(":memory:", &fDatabase);
        Execute("create table link(antecedent text, dependent text); begin");
        for (unsigned i = 0; i < count; ++i) {
            Execute("insert into link values('" + FrontPath(i) + "', '" + BackPath(i) + "')");
        }
        Execute("commit");
        sqlite3_prepare_v2(fDatabase, "select dependent from link where antecedent = ?1 or dependent = ?1", -1, &fWalk,
                           nullptr);
    }
    ~TSqliteLinks() {
        sqlite3_finalize(fWalk);
        sqlite3_close(fDatabase);
    }
    TSqliteLinks(const TSqliteLinks&) = delete;
    TSqliteLinks& operator=(const TSqliteLinks&) = delete;

    std::size_t Walk() const {
        std::size_t found = 0;
        for (const std::string& start : fStarts) {
            sqlite3_bind_text(fWalk, 1, start.c_str(), -1, SQLITE_STATIC);
            while (sqlite3_step(fWalk) == SQLITE_ROW) ++found;
            sqlite3_reset(fWalk);
        }
        return found;
    }

private:
    void Execute(const std::string& sql) { sqlite3_exec(fDatabase, sql.c_str(), nullptr, nullptr, nullptr); }

    std::vector<std::string> fStarts;
    sqlite3* fDatabase = nullptr;
    sqlite3_stmt* fWalk = nullptr;
};
#endif

void RaceWalks(TTable& table, const std::string& name, unsigned count) {
    if (!table.Wants(name)) return;
    const TLinks links(count);
    TRace race{name, "walk", kWalks};
    race.contenders = {{"kyrcore, References", [&links] { Expect(links.WalkReferences()); }},
                       {"kyrcore, Associators", [&links] { Expect(links.WalkAssociators()); }}};
    race.targets = {{"kyrcore, References", TTarget::eMicrosecondsForEach, 2, 0.5}};
#ifdef KYR_BENCH_SQLITE
    const TSqliteLinks sqlite(count, links.StartPaths());
    race.contenders.push_back({"SQLite without index", [&sqlite] { Expect(sqlite.Walk()); }});
#endif
    table.Run(race);
}

}  // namespace

void RaceAssociations(TTable& table, bool large) {
    RaceWalks(table, "walk 1,000 links", 1'000);
    RaceWalks(table, "walk 10,000 links", 10'000);
    if (large) RaceWalks(table, "walk 1,000,000 links", 1'000'000);
}
