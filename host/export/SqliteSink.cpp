#include "export/SqliteSink.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Output.h"
#include "base/Text.h"
#include "export/HostKey.h"
#include "export/Sqlite.h"
#include "export/SqliteTables.h"

namespace {

constexpr int64_t kApplication = 0x6B797244;  // "kyrD", by which file(1) can tell it
constexpr int64_t kVersion = 1;
constexpr size_t kRowsInTransaction = 50000;
constexpr size_t kChangedAt = 0;  // index in the columns of the table change

// A row of 1 to 2 kB, as one of a device, would take an overflow page of its own if pages were of 4 kB: a third of the
// file. The cache is 4 MB, however large the file is.
constexpr const char* kSettings = "PRAGMA page_size = 8192; PRAGMA cache_size = -4000";

constexpr const char* kSchema = R"(
CREATE TABLE host (id INTEGER PRIMARY KEY AUTOINCREMENT, key TEXT NOT NULL, name TEXT, machine_id TEXT, uuid TEXT,
    serial TEXT, first_seen TEXT, last_seen TEXT) STRICT;
CREATE INDEX host_key ON host (key);
CREATE INDEX host_machine_id ON host (machine_id);
CREATE INDEX host_uuid ON host (uuid);
CREATE INDEX host_serial ON host (serial);
CREATE TABLE run (id INTEGER PRIMARY KEY AUTOINCREMENT, host_id INTEGER NOT NULL, collected_at TEXT,
    collected_microseconds INTEGER NOT NULL, tool TEXT, tool_version TEXT, superuser INTEGER, state TEXT,
    reason_code TEXT, reason TEXT, file TEXT, fingerprint INTEGER NOT NULL) STRICT;
CREATE INDEX run_host ON run (host_id, collected_microseconds);
CREATE TABLE missing (run_id INTEGER NOT NULL, table_name TEXT NOT NULL, row_id INTEGER NOT NULL,
    column_name TEXT NOT NULL, reason TEXT NOT NULL, source TEXT) STRICT;
CREATE INDEX missing_run ON missing (run_id);
CREATE TABLE column_info (table_name TEXT NOT NULL, column_name TEXT NOT NULL, class TEXT, property TEXT, cim_type TEXT,
    unit TEXT, declared_unit TEXT, description TEXT, null_meaning TEXT, volatile INTEGER NOT NULL,
    PRIMARY KEY (table_name, column_name)) STRICT, WITHOUT ROWID;
CREATE TABLE document (run_id INTEGER PRIMARY KEY, file BLOB NOT NULL) STRICT;
)";

constexpr const char* kHostColumns =
    "host.id, key, name, coalesce(machine_id, ''), coalesce(uuid, ''), coalesce(serial, ''), "
    "coalesce((SELECT file FROM run WHERE host_id = host.id ORDER BY collected_microseconds DESC LIMIT 1), '')";

/// The file, which is made if it is not there. A transaction has begun.
class TFleetFile : public TSqliteFile {
public:
    explicit TFleetFile(const std::string& path) : TSqliteFile(path) {
        Execute(kSettings);
        Execute("BEGIN IMMEDIATE");
        const int64_t application = IntegerOf("PRAGMA application_id");
        const bool isNew = application == 0 && IntegerOf("SELECT count(*) FROM sqlite_schema") == 0;
        if (isNew) Make();
        if (!isNew && application != kApplication) Refuse("it is not one that kyr export has made; name another file");
        if (IntegerOf("PRAGMA user_version") > kVersion) Refuse("a later version of kyr has made it; use that");
    }

private:
    void Make() const {
        Execute(kSchema);
        Execute("PRAGMA application_id = " + std::to_string(kApplication));
        Execute("PRAGMA user_version = " + std::to_string(kVersion));
    }
};

/// A run that the data base has.
struct TStoredRun {
    int64_t id;
    int64_t microseconds;
    int64_t fingerprint;
    std::string collectedAt;
};

class TSqliteSink : public IRunSink {
public:
    TSqliteSink(const std::string& path, size_t keepRuns)
        : fKeepRuns(keepRuns), fFile(path), fTables(std::in_place, fFile) {
        fDataVersion = DataVersion();
        Commit();
    }

    bool WantsDocuments() const override { return true; }

    TVerdict Decide(const TRun& run) override {
        const std::optional<TKnownHost> host = FindHost(run);
        if (!host) return {};
        const std::vector<TStoredRun> runs = RunsOf(host->id);
        for (const TStoredRun& stored : runs)
            if (IsSame(stored, run)) return {TVerdict::eAlreadyStored};
        return VerdictAmong(runs, run);
    }

    void Begin(const TRun& run) override {
        if (!fIsInTransaction) Start();
        const std::optional<TKnownHost> host = FindHost(run);
        if (host) RemoveSame(run, host->id);
        fRun = run;
        fHostIsNew = !host;
        fOwner.host = host ? host->id : AddHost(run);
        if (host) CompleteHost(run);
        FindNewer();
        fOwner.run = AddRun(run);
    }

    void Table(const TTable& table) override { fTables->Ensure(table); }

    void Row(const TTable& table, TRow&& row) override {
        const bool isOfNewer = fNewer && &table == &ChangeTable() && row.cells[kChangedAt].text != fRun.collectedAt;
        fTables->Insert(table, row, {isOfNewer ? fNewer->id : fOwner.run, fOwner.host});
        ++fRows;
    }

    void Document(std::string&& document) override {
        fInsertDocument.Bind(1, fOwner.run);
        fInsertDocument.BindBlob(2, document);
        fInsertDocument.Run();
    }

    void End() override {
        const std::vector<TStoredRun> runs = RunsOf(fOwner.host);
        for (size_t i = fKeepRuns; i < runs.size(); ++i) RemoveRun(runs[i].id);
        NoteSeen();
        if (fRows >= kRowsInTransaction) Commit();
    }

    void Abandon() override {
        RemoveRun(fOwner.run);
        RemoveChanges(fOwner.run);
        if (!fHostIsNew) return;
        fRemoveHost.Bind(1, fOwner.host);
        fRemoveHost.Run();
    }

    void Finish() override {
        if (fIsInTransaction) Commit();
    }

private:
    static bool IsSame(const TStoredRun& stored, const TRun& run) {
        return stored.microseconds == run.collectedMicroseconds && stored.fingerprint == FingerprintOf(run);
    }

    static int64_t FingerprintOf(const TRun& run) { return static_cast<int64_t>(run.fingerprint); }

    std::optional<TKnownHost> FindHost(const TRun& run) {
        const std::string key = HostKeyOf(run);
        fFindHost.Bind(1, key);
        std::optional<TKnownHost> found;
        while (!found && fFindHost.Step())
            if (const TKnownHost host = HostIn(fFindHost); IsOfHost(run, host)) found = host;
        fFindHost.Reset();
        return found;
    }

    static TKnownHost HostIn(const TSqliteStatement& row) {
        return {row.Integer(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), row.Text(5), row.Text(6)};
    }

    // The last one first.
    std::vector<TStoredRun> RunsOf(int64_t host) {
        fFindRuns.Bind(1, host);
        std::vector<TStoredRun> runs;
        while (fFindRuns.Step())
            runs.push_back({fFindRuns.Integer(0), fFindRuns.Integer(1), fFindRuns.Integer(2), fFindRuns.Text(3)});
        return runs;
    }

    TVerdict VerdictAmong(const std::vector<TStoredRun>& runs, const TRun& run) {
        const auto older = std::find_if(runs.begin(), runs.end(), [&](const TStoredRun& stored) {
            return stored.microseconds <= run.collectedMicroseconds;
        });
        const auto newerCount = static_cast<size_t>(older - runs.begin());
        if (newerCount >= fKeepRuns) return {TVerdict::eOlder, RefusalOf(run, runs.front())};
        TVerdict verdict;
        if (older != runs.end()) verdict.neighbours.push_back(NeighbourOf(*older, true));
        if (older != runs.begin()) verdict.neighbours.push_back(NeighbourOf(*(older - 1), false));
        return verdict;
    }

    std::string RefusalOf(const TRun& run, const TStoredRun& stored) const {
        const std::string file = run.file.empty() ? "" : " in '" + VisibleText(run.file) + "'";
        return "the run of " + run.collectedAt + " of '" + VisibleText(run.name) + "'" + file +
               " is older than the stored one of " + stored.collectedAt + " and not stored; --keep-runs " +
               std::to_string(fKeepRuns + 1) + " keeps more of them";
    }

    TVerdict::TNeighbour NeighbourOf(const TStoredRun& stored, bool isOlder) {
        fFindDocument.Bind(1, stored.id);
        TVerdict::TNeighbour neighbour{isOlder, "", "", stored.collectedAt};
        if (fFindDocument.Step()) neighbour.document = fFindDocument.Text(0);
        fFindDocument.Reset();
        return neighbour;
    }

    int64_t AddHost(const TRun& run) {
        WarnOfClone(run);
        const std::string key = HostKeyOf(run);
        fInsertHost.Bind(1, key);
        fInsertHost.BindIfAny(2, run.name);
        BindIdentifiers(fInsertHost, 3, run);
        fInsertHost.Bind(6, run.collectedAt);
        fInsertHost.Run();
        return fFile.LastRow();
    }

    static void BindIdentifiers(TSqliteStatement& statement, int first, const TRun& run) {
        statement.BindIfAny(first, run.machineId);
        statement.BindIfAny(first + 1, run.uuid);
        statement.BindIfAny(first + 2, run.serial);
    }

    // Of many copies the first one is named.
    void WarnOfClone(const TRun& run) {
        const std::string key = HostKeyOf(run);
        BindIdentifiers(fFindClone, 1, run);
        fFindClone.Bind(4, key);
        if (fFindClone.Step())
            if (const std::string warning = CloneWarning(run, HostIn(fFindClone)); !warning.empty())
                PrintDiagnostic(warning);
        fFindClone.Reset();
    }

    // A run of a superuser tells what those before it could not.
    void CompleteHost(const TRun& run) {
        BindIdentifiers(fCompleteHost, 1, run);
        fCompleteHost.Bind(4, fOwner.host);
        fCompleteHost.Run();
    }

    // Another process may have stored it since it was decided on.
    void RemoveSame(const TRun& run, int64_t host) {
        for (const TStoredRun& stored : RunsOf(host))
            if (IsSame(stored, run)) {
                RemoveRun(stored.id);
                RemoveChanges(stored.id);
            }
    }

    // The changes from the run before it to a newer one are found anew.
    void FindNewer() {
        fNewer.reset();
        for (const TStoredRun& stored : RunsOf(fOwner.host))
            if (stored.microseconds > fRun.collectedMicroseconds) fNewer = stored;
        if (!fNewer) return;
        RemoveChanges(fNewer->id);
    }

    int64_t AddRun(const TRun& run) {
        fInsertRun.Bind(1, fOwner.host);
        fInsertRun.BindIfAny(2, run.collectedAt);
        fInsertRun.Bind(3, run.collectedMicroseconds);
        fInsertRun.BindIfAny(4, run.tool);
        fInsertRun.BindIfAny(5, run.toolVersion);
        run.superuser ? fInsertRun.Bind(6, int64_t{*run.superuser}) : fInsertRun.BindNull(6);
        fInsertRun.BindIfAny(7, run.state);
        fInsertRun.BindIfAny(8, run.reasonCode);
        fInsertRun.BindIfAny(9, run.reason);
        fInsertRun.BindIfAny(10, run.file);
        fInsertRun.Bind(11, FingerprintOf(run));
        fInsertRun.Run();
        return fFile.LastRow();
    }

    void RemoveRun(int64_t run) {
        fTables->RemoveRun(run);
        for (TSqliteStatement* statement : {&fRemoveMissing, &fRemoveDocument, &fRemoveRun}) {
            statement->Bind(1, run);
            statement->Run();
        }
    }

    void RemoveChanges(int64_t run) {
        fRemoveChanges.Bind(1, run);
        fRemoveChanges.Run();
    }

    void NoteSeen() {
        fNoteSeen.Bind(1, fRun.collectedAt);
        fNoteSeen.Bind(2, fOwner.host);
        fNoteSeen.Run();
    }

    // Between transactions another process may have added tables and columns.
    void Start() {
        fFile.Execute("BEGIN IMMEDIATE");
        fIsInTransaction = true;
        const int64_t version = DataVersion();
        if (std::exchange(fDataVersion, version) != version) fTables.emplace(fFile);
    }

    int64_t DataVersion() const { return fFile.IntegerOf("PRAGMA data_version"); }

    void Commit() {
        fFile.Execute("COMMIT");
        fIsInTransaction = false;
        fRows = 0;
    }

    const size_t fKeepRuns;
    const TFleetFile fFile;
    std::optional<TSqliteTables> fTables;
    int64_t fDataVersion = 0;  // which another process that writes the file changes
    TSqliteStatement fFindHost{fFile, std::string("SELECT ") + kHostColumns + " FROM host WHERE key = ? ORDER BY id"};
    TSqliteStatement fFindClone{fFile, std::string("SELECT ") + kHostColumns +
                                           " FROM host WHERE machine_id = ?1 OR uuid = ?2 OR serial = ?3 OR key = ?4 "
                                           "ORDER BY id LIMIT 1"};
    TSqliteStatement fFindRuns{fFile,
                               "SELECT id, collected_microseconds, fingerprint, collected_at FROM run WHERE "
                               "host_id = ? ORDER BY collected_microseconds DESC, id DESC"};
    TSqliteStatement fFindDocument{fFile, "SELECT file FROM document WHERE run_id = ?"};
    TSqliteStatement fInsertHost{fFile,
                                 "INSERT INTO host (key, name, machine_id, uuid, serial, first_seen, last_seen) "
                                 "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?6)"};
    TSqliteStatement fCompleteHost{fFile,
                                   "UPDATE host SET machine_id = coalesce(machine_id, ?1), uuid = coalesce(uuid, ?2), "
                                   "serial = coalesce(serial, ?3) WHERE id = ?4"};
    TSqliteStatement fNoteSeen{fFile,
                               "UPDATE host SET "
                               "first_seen = iif(julianday(?1) < julianday(first_seen), ?1, first_seen), "
                               "last_seen = iif(julianday(?1) > julianday(last_seen), ?1, last_seen) WHERE id = ?2"};
    TSqliteStatement fInsertRun{fFile,
                                "INSERT INTO run (host_id, collected_at, collected_microseconds, tool, tool_version, "
                                "superuser, state, reason_code, reason, file, fingerprint) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"};
    TSqliteStatement fInsertDocument{fFile, "INSERT INTO document VALUES (?, ?)"};
    TSqliteStatement fRemoveMissing{fFile, "DELETE FROM missing WHERE run_id = ?"};
    TSqliteStatement fRemoveDocument{fFile, "DELETE FROM document WHERE run_id = ?"};
    TSqliteStatement fRemoveRun{fFile, "DELETE FROM run WHERE id = ?"};
    TSqliteStatement fRemoveHost{fFile, "DELETE FROM host WHERE id = ?"};
    TSqliteStatement fRemoveChanges{fFile, "DELETE FROM change WHERE run_id = ?"};
    bool fIsInTransaction = false;
    size_t fRows = 0;  // of the transaction
    TRun fRun;         // the one that is being stored
    TOwner fOwner;
    bool fHostIsNew = false;
    std::optional<TStoredRun> fNewer;  // the next run of the host
};

}  // namespace

std::unique_ptr<IRunSink> OpenSqliteSink(const std::string& path, size_t keepRuns) {
    return std::make_unique<TSqliteSink>(path, std::max<size_t>(keepRuns, 1));
}
