#include "KyrRun.h"

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* kCsv = "--csv MOLTA_ComputerSystem ";

/// Two saved collections, and lists of them.
class ExportFormsTest : public testing::Test {
protected:
    ExportFormsTest() {
        for (const char* machine : {"server", "laptop"})
            RunKyrOn(machine, std::string("collect --class CIM_ComputerSystem -o ") + Path(machine) + ".xml");
        const std::string server = Path("server.xml"), laptop = Path("laptop.xml");
        fFolder.Write("lines", server + "\n\n" + laptop + "\n");
        fFolder.Write("nuls", server + '\0' + laptop + '\0');
        fFolder.Write("nothing", "\n");
        fFolder.Write("mixed", fFolder.Path() + "\n" + server);
    }

    std::string Path(const std::string& name) const { return fFolder.Path() + "/" + name; }
    // "{}" stands for the folder.
    TRunResult Export(std::string arguments) const {
        for (size_t at = 0; (at = arguments.find("{}", at)) != std::string::npos;)
            arguments.replace(at, 2, fFolder.Path());
        return RunKyr("export " + arguments);
    }

    const TempFolder fFolder;
};

TEST_F(ExportFormsTest, TakeCollectionsByNameFromListsAndFromPipes) {
    const struct {
        const char* arguments;
        std::vector<std::string> hosts;
    } kCases[] = {
        {"{}/server.xml {}/laptop.xml", {"db01.example.net", "tern"}},
        {"@{}/lines", {"db01.example.net", "tern"}},
        {"@{}/nuls", {"db01.example.net", "tern"}},
        {"- <{}/lines", {"db01.example.net", "tern"}},
        {"- <{}/nuls", {"db01.example.net", "tern"}},
        {"- <{}/laptop.xml", {"tern"}},
        {"--from {}/laptop.xml", {"tern"}},
        {"{}/server.xml /dev/stdin <{}/laptop.xml", {"db01.example.net", "tern"}},
        {"{}/laptop.xml {}/laptop.xml", {"tern"}},
    };
    for (const auto& each : kCases) {
        const TRunResult run = Export(kCsv + std::string(each.arguments));
        EXPECT_EQ(run.status, 0) << each.arguments << run.err;
        EXPECT_EQ(CountIn(run.out, "\r\n"), each.hosts.size() + 1) << each.arguments;
        for (const std::string& host : each.hosts)
            EXPECT_THAT(run.out, HasSubstr("\r\n" + host + ",")) << each.arguments;
    }
}

TEST_F(ExportFormsTest, SayWhatIsWrong) {
    const struct {
        const char* arguments;
        int status;
        const char* err;
    } kCases[] = {
        {"{}/server.xml", 2,
         "say what is to be written: --sqlite FILE, --postgres, --jsonl, --csv CLASS or --cyclonedx"},
        {"--jsonl {}", 2, "is a folder: name its files, as by find"},
        {"--jsonl @{}/nothing", 2, "names no collection"},
        {"--jsonl - </dev/null", 2, "standard input names no collection"},
        {"--jsonl @{}/none", 2, "No such file or directory"},
        {"--jsonl {}/none.xml", 3, "1 file: 0 runs stored, 1 unreadable"},
        {"--jsonl {}/none.xml {}/server.xml", 1, "2 files: 1 run stored, 1 unreadable"},
        {"--jsonl @{}/mixed", 1, "2 files: 1 run stored, 1 unreadable"},
        {"--jsonl --class computers --class MOLTA_Nothing {}/server.xml", 2,
         "no collection knows the class 'MOLTA_Nothing'"},
        {"--csv MOLTA_Nothing {}/server.xml", 2, "no collection knows the class 'MOLTA_Nothing'"},
        {"--csv CIM_ManagedElement {}/server.xml", 2, "'CIM_ManagedElement' stands for several classes, among them"},
        {"--jsonl --postgres {}/server.xml", 2, "--postgres and --jsonl do not go together"},
        {"--jsonl --keep-runs 2 {}/server.xml", 2, "do not go together: only a data base keeps runs"},
        {"--postgres --keep-runs 0 {}/server.xml", 2, "'0' is no number of runs from 1 to 1000000"},
        {"--sqlite {}/a.db -o {}/b {}/server.xml", 2, "--sqlite and --output do not go together"},
        {"--jsonl --timeout 3 {}/server.xml", 2, "COLLECTION and --timeout do not go together"},
        {"--jsonl {}/server.xml >/dev/full", 4, "cannot write standard output"},
    };
    for (const auto& each : kCases) {
        const TRunResult run = Export(each.arguments);
        EXPECT_EQ(run.status, each.status) << each.arguments;
        EXPECT_THAT(run.err, HasSubstr(each.err)) << each.arguments;
    }
}

TEST_F(ExportFormsTest, WriteAFileOnlyWhole) {
    const std::string target = fFolder.Write("lines.jsonl", "before");
    EXPECT_THAT(Export("--jsonl -o {}/lines.jsonl {}/none.xml @{}/none"), FieldsAre(2, IsEmpty(), _));
    EXPECT_EQ(ReadFile(target), "before");
    EXPECT_THAT(Export("--jsonl -o {}/lines.jsonl {}/server.xml"), FieldsAre(0, IsEmpty(), _));
    EXPECT_EQ(ReadFile(target), Export("--jsonl {}/server.xml").out);
}

TEST(ExportMachineTest, CollectsThisMachineIfNoCollectionIsNamed) {
    const TRunResult run = RunKyrOn("server", "export --jsonl --class computers");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("\"class\": \"computer_system\", \"key\": \"db01.example.net\""));
    EXPECT_THAT(RunKyrOn("server", "export --csv nonsense"),
                FieldsAre(2, IsEmpty(), HasSubstr("unknown class 'nonsense'")));
}

}  // namespace
