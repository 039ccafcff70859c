#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>

#include <fstream>
#include <memory>

#include "KyrRun.h"
#include "export/ClassTable.h"
#include "export/Fleet.h"
#include "export/RunSink.h"
#include "model/Values.h"
#include "support/SchemaBuilder.h"

using testing::EndsWith;

namespace {

constexpr const char* kUuid = "4c4c4544-0051-3110-8031-b2c04f313233";
constexpr const char* kMachineId = "0eedb226-312d-4aa4-b63f-2ce3b9260b16";
constexpr const char* kIntegrity = "PRAGMA integrity_check";

using TEdits = std::vector<std::pair<std::string, std::string>>;

/// What a query gives: columns with "|" between them, rows with a blank.
std::string Query(const std::string& path, const std::string& sql) {
    sqlite3* file = nullptr;
    sqlite3_open_v2(path.c_str(), &file, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> owner(file, sqlite3_close);
    std::string result;
    const auto add = [](void* text, int count, char** values, char**) {
        auto& all = *static_cast<std::string*>(text);
        for (int i = 0; i < count; ++i)
            all += (i > 0 ? "|" : all.empty() ? "" : " ") + std::string(values[i] == nullptr ? "NULL" : values[i]);
        return 0;
    };
    char* error = nullptr;
    if (sqlite3_exec(file, sql.c_str(), add, &result, &error) != SQLITE_OK) result += error;
    sqlite3_free(error);
    return result;
}

/// Copies of one saved collection, and a data base.
class ExportTest : public testing::Test {
protected:
    ExportTest() {
        const std::string file = fFolder.Path() + "/server.xml";
        const TRunResult run =
            RunKyrOn("server", "collect --class CIM_ComputerSystem --class CIM_OperatingSystem -o " + file);
        EXPECT_EQ(run.status, 0) << run.err;
        fContent = WithoutMarks(ReadFile(file));
        const size_t time = fContent.find("<VALUE>", fContent.rfind("\"DateTimeOfCollection\"")) + 7;
        fTime = fContent.substr(time, 25);
    }

    /// A copy of that day of January, in which texts are replaced everywhere.
    std::string Copy(const std::string& name, int day, const TEdits& edits = {}) {
        std::string content = fContent;
        ReplaceIn(content, fTime, "2026010" + std::to_string(day) + "120000.000000+000");
        for (const auto& [text, other] : edits) ReplaceIn(content, text, other);
        return " " + fFolder.Write(name + ".xml", content);
    }

    TRunResult Export(const std::string& arguments) const {
        return RunKyr("export --sqlite " + fBase + " " + arguments);
    }

    TempFolder fFolder;
    const std::string fBase = fFolder.Path() + "/fleet.db";
    std::string fContent;
    std::string fTime;
};

}  // namespace

TEST_F(ExportTest, KeepsTheLastRunsOfAHostAndWhatChangedBetweenThem) {
    const std::string first = Copy("first", 1), second = Copy("second", 2, {{"6.1.0-18-amd64", "6.1.0-31-amd64"}}),
                      third = Copy("third", 3, {{"6.1.0-18-amd64", "6.1.0-31-amd64"}, {"KQ12345", "KQ9"}}),
                      fourth = Copy("fourth", 4);
    const struct {
        std::string arguments;
        std::string err;
        const char* query;
        const char* result;
    } steps[] = {
        {second, "kyr: 1 file: 1 run stored\n", "SELECT name, uuid, first_seen FROM host",
         "db01.example.net|4c4c4544-0051-3110-8031-b2c04f313233|2026-01-02T12:00:00+00:00"},
        {second, "kyr: 1 file: 0 runs stored, 1 already there\n", "SELECT count(*) FROM run", "1"},
        {first, "is older than the stored one of 2026-01-02T12:00:00+00:00 and not stored; --keep-runs 2 keeps",
         "SELECT count(*) FROM run", "1"},
        {"--keep-runs 2" + first, "1 run stored",
         "SELECT run_id, op, property, old, new FROM change WHERE property = 'KernelRelease'",
         "1|changed|KernelRelease|6.1.0-18-amd64|6.1.0-31-amd64"},
        {"--keep-runs 2" + first + second, "0 runs stored, 2 already there", "SELECT first_seen, last_seen FROM host",
         "2026-01-01T12:00:00+00:00|2026-01-02T12:00:00+00:00"},
        {fourth, "1 run stored", "SELECT count(*), (SELECT count(*) FROM document), min(collected_at) FROM run",
         "1|1|2026-01-04T12:00:00+00:00"},
        {"--keep-runs 3" + third, "are stored as two hosts", "SELECT count(*) FROM host", "2"},
    };
    for (const auto& [arguments, err, query, result] : steps) {
        const TRunResult run = Export(arguments);
        EXPECT_EQ(run.status, 0) << arguments;
        EXPECT_THAT(run.err, HasSubstr(err)) << arguments;
        EXPECT_EQ(Query(fBase, query), result) << arguments << '\n' << query;
    }
    EXPECT_EQ(
        Query(fBase, "SELECT DISTINCT previous_at, changed_at FROM change WHERE property = 'KernelRelease'"),
        "2026-01-01T12:00:00+00:00|2026-01-02T12:00:00+00:00 2026-01-02T12:00:00+00:00|2026-01-04T12:00:00+00:00");
    EXPECT_EQ(Query(fBase, "SELECT count(*) FROM class_state WHERE run_id NOT IN (SELECT id FROM run)"), "0");
    EXPECT_EQ(Query(fBase, kIntegrity), "ok");
}

TEST_F(ExportTest, NeverMakesOneHostOfTwo) {
    const struct {
        TEdits edits;
        const char* hosts;
        const char* warning;
    } cases[] = {
        {{}, "1", ""},
        {{{"KQ12345", "To be filled by O.E.M."}}, "1", ""},
        {{{"KQ12345", "KQ9"}}, "2", "have in common the machine ID "},
        {{{"db01.example.net", "db02"}}, "2", " and the UUID "},
        {{{"db01.example.net", "db02"}, {kMachineId, "11111111-2222-4333-8444-555555555555"}, {"KQ12345", "KQ9"}},
         "2",
         "have in common the UUID 4c4c4544-0051-3110-8031-b2c04f313233, and are stored as two hosts"},
        {{{kUuid, "4C4C4544-0051-3110-8031-B2C04F313233"}}, "1", ""},
        {{{"db01.example.net", "db02"},
          {kMachineId, "11111111-2222-4333-8444-555555555555"},
          {"KQ12345", "KQ9"},
          {kUuid, "4c4c4544-0051-3110-8031-b2c04f313299"}},
         "2",
         ""},
    };
    int number = 0;
    for (const auto& [edits, hosts, warning] : cases) {
        const std::string name = "copy" + std::to_string(++number);
        std::remove(fBase.c_str());
        const TRunResult run = Export(Copy("first", 1) + Copy(name, 2, edits));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(Query(fBase, "SELECT count(*) FROM host"), hosts) << name;
        EXPECT_EQ(CountIn(run.err, name + ".xml"), *warning == '\0' ? 0 : 1) << run.err;
        EXPECT_THAT(run.err, HasSubstr(warning));
    }
}

TEST_F(ExportTest, AddsWhatNewerCollectionsHaveAndDropsNothing) {
    const std::string first = Copy("first", 1);
    const std::string renamed = Copy("second", 2, {{"\"KernelRelease\"", "\"ReleaseOfKernel\""}});
    const std::string other = Copy("third", 3, {{"MOLTA_OperatingSystem", "ABC_OperatingSystem"}});
    EXPECT_EQ(Export("--keep-runs 3" + first + renamed + other).status, 0);
    EXPECT_EQ(Query(fBase, "SELECT kernel_release, release_of_kernel FROM operating_system ORDER BY run_id"),
              "6.1.0-18-amd64|NULL NULL|6.1.0-18-amd64");
    EXPECT_EQ(Query(fBase, "SELECT kernel_release FROM abc_operating_system"), "6.1.0-18-amd64");
    EXPECT_EQ(Query(fBase, "SELECT DISTINCT table_name, class FROM column_info WHERE property = 'KernelRelease'"),
              "abc_operating_system|ABC_OperatingSystem operating_system|MOLTA_OperatingSystem");
    std::string text = fContent;
    for (size_t place = 0; (place = text.find("\"SystemUpTime\"", place)) != std::string::npos; ++place)
        text.replace(text.find("TYPE=\"uint64\"", place), 13, "TYPE=\"string\"");
    ReplaceIn(text, fTime, "20260104120000.000000+000");
    EXPECT_EQ(Export("--keep-runs 4 " + fFolder.Write("fourth.xml", text)).status, 0);
    EXPECT_EQ(Query(fBase,
                    "SELECT typeof(system_up_time_seconds), typeof(system_up_time_seconds_text) FROM "
                    "operating_system ORDER BY run_id"),
              "integer|null integer|null null|text");
}

TEST_F(ExportTest, TellsWhatItCannotReadAndStoresTheRest) {
    const std::string nobody = Copy("nobody", 1,
                                    {{"\"HostName\"", "\"Other\""},
                                     {"MOLTA_ComputerSystem", "MOLTA_Other"},
                                     {"\"MachineID\"", "\"A\""},
                                     {"\"UUID\"", "\"B\""},
                                     {"\"SerialNumber\"", "\"C\""}});
    const std::string empty = fFolder.Write("empty.xml", ""), text = fFolder.Write("text.xml", "some text");
    const TRunResult run = Export(empty + Copy("first", 1) + " " + text + " none.xml" + nobody);
    EXPECT_EQ(run.status, 1);
    for (const char* told : {"empty.xml': it is empty\n", "text.xml': ", "'none.xml': No such file or directory\n",
                             "it does not tell of which host it is; collect it with the class MOLTA_ComputerSystem\n"})
        EXPECT_THAT(run.err, HasSubstr(told));
    EXPECT_THAT(run.err, EndsWith("kyr: 5 files: 1 run stored, 4 unreadable\n"));
    EXPECT_EQ(Query(fBase, "SELECT count(*), min(file LIKE '%first.xml') FROM run"), "1|1");
}

TEST_F(ExportTest, LeavesOtherFilesAlone) {
    const std::string first = Copy("first", 1);
    const std::string foreign = fFolder.Path() + "/foreign.db", later = fFolder.Path() + "/later.db";
    EXPECT_EQ(RunKyr("export --sqlite " + later + first).status, 0);
    EXPECT_EQ(Query(later, "PRAGMA user_version = 99"), "");
    fFolder.Write("foreign.db", "");
    EXPECT_EQ(Query(foreign, "CREATE TABLE host (id)"), "");
    const struct {
        std::string path;
        const char* why;
    } cases[] = {{foreign, "it is not one that kyr export has made; name another file"},
                 {later, "a later version of kyr has made it; use that"},
                 {fFolder.Write("text.txt", "what somebody has written, longer than the head of a data base\n"),
                  "it is no data base of SQLite; name another file"}};
    for (const auto& [path, why] : cases) {
        const std::string before = ReadFile(path);
        EXPECT_THAT(RunKyr("export --sqlite " + path + first),
                    FieldsAre(4, "", "kyr: cannot write the data base '" + path + "': " + why + "\n"));
        EXPECT_EQ(ReadFile(path), before) << path;
    }
    EXPECT_THAT(RunKyr("export --sqlite " + fFolder.Path() + "/none/x.db" + first),
                FieldsAre(4, "", HasSubstr("No such file or directory")));
}

TEST_F(ExportTest, LeavesASoundFileWhenItIsKilled) {
    std::string files;
    for (int i = 0; i < 30; ++i) {
        const std::string name = "host" + std::to_string(i);
        files += Copy(name, 1,
                      {{"db01.example.net", name},
                       {kMachineId, "11111111-2222-4333-8444-5555555555" + std::to_string(10 + i)},
                       {kUuid, "4c4c4544-0051-3110-8031-b2c04f3132" + std::to_string(10 + i)},
                       {"KQ12345", "KQ" + name}});
    }
    const std::string journal = fBase + "-journal";
    RunShell(KYR_PROGRAM " export --sqlite " + fBase + files + " & p=$!; while [ ! -s " + fBase +
             " ] && kill -0 $p 2>/dev/null; do :; done; while [ ! -s " + journal +
             " ] && kill -0 $p 2>/dev/null; do :; done; kill -KILL $p; wait $p");
    EXPECT_EQ(Query(fBase, kIntegrity), "ok");
    EXPECT_THAT(Export(files).err, HasSubstr("30 files: "));
    EXPECT_EQ(Query(fBase,
                    "SELECT count(*), (SELECT count(*) FROM operating_system), (SELECT count(*) FROM document) "
                    "FROM run"),
              "30|30|30");
}

namespace {

/// Notes the calls, and kills the process that reads when the first run is complete.
class TKillingSink : public IRunSink {
public:
    void Begin(const TRun& run) override { fOpen = run.collectedAt.substr(0, 10); }
    void Table(const TTable&) override {}
    void Row(const TTable&, TRow&&) override {}
    void End() override {
        stored.push_back(std::exchange(fOpen, ""));
        if (!std::exchange(fHasKilled, true)) KillReader();
    }
    // The process may have told of its next run before it was killed, or not.
    void Abandon() override { fOpen.clear(); }
    void Finish() override {}

    std::vector<std::string> stored;

private:
    static void KillReader() {
        pid_t child = 0;
        std::ifstream("/proc/thread-self/children") >> child;
        ASSERT_GT(child, 0);
        kill(child, SIGKILL);
        siginfo_t info{};
        waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    }

    std::string fOpen;  // the run that has begun
    bool fHasKilled = false;
};

}  // namespace

// The runs are of one host, so that the second one waits until the first is stored.
TEST_F(ExportTest, LosesOneFileWithAProcessThatDies) {
    std::vector<TSource> sources;
    for (int day = 1; day <= 3; ++day) {
        const std::string path = Copy("day" + std::to_string(day), day).substr(1);
        sources.push_back({path, path});
    }
    TKillingSink sink;
    TFleetOptions options;
    options.workers = 1;
    testing::internal::CaptureStderr();
    const TFleetCounts counts = ExportFiles(sources, options, sink);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                EndsWith("day2.xml': the process that read it was ended by SIGKILL\n"));
    EXPECT_EQ(TextOf(counts), "3 files: 2 runs stored, 1 unreadable");
    EXPECT_THAT(sink.stored, ElementsAre("2026-01-01", "2026-01-03"));
}

using ExportNamesTest = SchemaTest;

TEST_F(ExportNamesTest, AreWordsInSmallLettersThatNoDataBaseReserves) {
    const TLines cases[] = {{"Size", "size"},
                            {"PCIDeviceID", "pci_device_id"},
                            {"NUMANode", "numa_node"},
                            {"IPv6Address", "ipv6_address"},
                            {"BogoMIPS", "bogo_mips"},
                            {"VLANID", "vlan_id"},
                            {"SHA256Sum", "sha256_sum"},
                            {"a_B.c d", "a_b_c_d"},
                            {"3Com", "_3_com"},
                            {"Table", "table_"},
                            {"Order", "order_"},
                            {"Xmin", "xmin_"}};
    for (const TLines& each : cases) EXPECT_EQ(SqlName(each[0]), each[1]);
    const std::string start(60, 'x'), other = start + "yyyyy";
    EXPECT_EQ(ShortName(start + "zzz"), start + "zzz");
    EXPECT_EQ(ShortName(start + "zzzz").size(), 63u);
    EXPECT_NE(ShortName(start + "zzzz"), ShortName(other));
    std::vector<TCIMClass*> classes;
    for (const char* name : {"CIM_Disk", "MOLTA_Disk", "XYZ_Change", "XYZ_SqliteThing"})
        classes.push_back(&fSchema.AddClass(name, {Key("ID")}));
    EXPECT_THAT(TableNamesOf(classes), ElementsAre("disk", "molta_disk", "change_", "t_sqlite_thing"));
}

// A value in a unit is displayed as the same value in the base unit.
TEST_F(ExportNamesTest, TellUnitsAsValuesAreDisplayedInThem) {
    const struct {
        const char* base;
        TLines magnitudes;
        unsigned long count;
    } cases[] = {{"Bytes", {"Kilo", "Mega", "Giga", "Tera", "Peta"}, 3},
                 {"Bits", {"Kilo", "Mega", "Giga", "Tera", "Peta"}, 3},
                 {"Bytes per Second", {"Kilo", "Mega", "Giga"}, 3},
                 {"Bits per Second", {"Kilo", "Mega", "Giga", "Tera", "Peta"}, 3},
                 {"Seconds", {"Milli", "Micro", "Nano"}, 5000000000}};
    const auto displayed = [&](const std::string& unit, unsigned long count) {
        const std::unique_ptr<TCIMPropertyDecl> declaration =
            fSchema.NewProperty(*fContainer.GetRootClass(), {"Counted", TCIMValue(count)});
        fSchema.Qualify(*declaration, "Units", TCIMValue(unit));
        return DisplayText(TCIMProperty(*declaration, TCIMValue(count)));
    };
    for (const auto& [base, magnitudes, count] : cases)
        for (const std::string& magnitude : magnitudes) {
            const TUnit unit = BaseUnitOf(magnitude + base);
            EXPECT_EQ(displayed(magnitude + base, count), displayed(base, count * unit.factor / unit.divisor))
                << magnitude;
            EXPECT_EQ(unit.base, BaseUnitOf(base).base);
        }
    EXPECT_EQ(BaseUnitOf("Million Loops per Second").base, "Million Loops per Second");
    EXPECT_EQ(BaseUnitOf("MilliAmperes").divisor, 1000u);
}
