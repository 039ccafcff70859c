#include "KyrRun.h"

using testing::EndsWith;

namespace {

/// Saved collections of machines of the fixtures, of the class of the computer system unless arguments say more.
class DiffTest : public testing::Test {
protected:
    std::string Save(const std::string& machine, const std::string& name, const std::string& arguments = "") {
        std::string file = fFolder.Path() + "/" + name + ".xml";
        const TRunResult run = RunKyrOn(machine, "collect " + arguments + " -o " + file);
        EXPECT_NE(run.status, 3) << run.err;
        return file;
    }

    /// A copy of the file with a text in it replaced everywhere, and without the mark that would tell that.
    std::string Edit(const std::string& file, const std::string& name, const std::string& text,
                     const std::string& other) {
        std::string content = WithoutMarks(ReadFile(file));
        ReplaceIn(content, text, other);
        return fFolder.Write(name + ".xml", content);
    }

    TempFolder fFolder;
};

constexpr const char* kSystem = "--class CIM_ComputerSystem --class CIM_OperatingSystem";

}  // namespace

TEST_F(DiffTest, SaysInTextAndStatusWhatDiffers) {
    const std::string server = Save("server", "server", kSystem);
    const std::string renamed = Edit(server, "renamed", "db01.example.net", "web01");
    const std::string moved = Edit(renamed, "other", "4c4c4544-0051", "4c4c4544-0052");
    const std::string patched = Edit(server, "patched", "6.1.0-18-amd64", "6.1.0-31-amd64");
    const std::string mended =
        Edit(Edit(server, "board", "4c4c4544-0051", "4c4c4544-0052"), "mended", "KQ12345", "KQ9");
    const std::string damaged = fFolder.Write("damaged.xml", ReadFile(server) + " ");
    const char* const sameNoMore =
        "two machines: db01.example.net (machine ID 0eedb226-312d-4aa4-b63f-2ce3b9260b16, UUID "
        "4c4c4544-0051-3110-8031-b2c04f313233, serial KQ12345) and web01 (machine ID "
        "0eedb226-312d-4aa4-b63f-2ce3b9260b16, UUID 4c4c4544-0052-3110-8031-b2c04f313233, serial KQ12345)\n";
    const struct {
        std::string arguments;
        int status;
        std::string out;
    } cases[] = {
        {server + " " + server, 0, "no changes\n"},
        {"--quiet " + server + " " + server, 0, ""},
        {server + " --from " + renamed, 1, "ComputerSystem\n  ~ web01  Name  db01.example.net -> web01\n1 changed\n"},
        {"--quiet " + server + " " + renamed, 1, ""},
        {"--class CIM_OperatingSystem " + server + " " + renamed, 0, "no changes\n"},
        {server + " " + moved, 1, sameNoMore},
        {server + " " + mended, 1, "ComputerSystem\n  ~ db01.example.net  SerialNumber  KQ12345 -> KQ9\n"},
        {server + " " + damaged, 1, "NEW: the file is not as it was saved"},
    };
    for (const auto& [arguments, status, out] : cases)
        EXPECT_THAT(RunKyr("diff " + arguments), FieldsAre(status, StartsWith(out), "")) << arguments;
    EXPECT_THAT(RunKyr("diff " + server + " " + patched).out,
                HasSubstr("KernelRelease  6.1.0-18-amd64 -> 6.1.0-31-amd64\n"));
    EXPECT_THAT(RunKyr("diff " + server + " " + moved).out, EndsWith("1 removed, 1 added\n"));
}

TEST_F(DiffTest, ComparesWithThisMachineWhereNoOtherFileIsGiven) {
    const std::string server = Save("server", "server", kSystem);
    EXPECT_THAT(RunKyrOn("server", std::string("diff ") + kSystem + " " + server), FieldsAre(0, "no changes\n", ""));
    EXPECT_EQ(RunKyrOn("laptop", "diff --quiet " + server).status, 1);
}

TEST_F(DiffTest, StatesDecideWhatCanBeCompared) {
    const std::string whole = Save("server", "whole", kSystem);
    const std::string part = Save("server", "part", "--class CIM_ComputerSystem");
    const std::string fewer = Edit(whole, "fewer", "\"InstanceCount\" TYPE=\"uint32\"><VALUE>1<",
                                   "\"InstanceCount\" TYPE=\"uint32\"><VALUE>2<");
    const std::string other = Edit(fewer, "other", ">Debian GNU/Linux<", ">Other<");
    EXPECT_THAT(
        RunKyr("diff " + whole + " " + part),
        FieldsAre(0, AllOf(HasSubstr("left out on purpose: "), EndsWith("no changes; 1 class not compared\n")), ""));
    EXPECT_THAT(
        RunKyr("diff " + whole + " " + other),
        FieldsAre(
            1,
            AllOf(HasSubstr("partial in NEW: 1 of 2 instances are in the file; 1 not seen in NEW; 1 not seen in OLD\n"),
                  EndsWith("no changes; 2 classes compared in part\n")),
            ""));
    EXPECT_THAT(RunKyr("diff " + fewer + " " + fewer),
                FieldsAre(0, HasSubstr("on both sides for the same reason"), ""));
    EXPECT_THAT(RunKyr("diff " SAVED "/without-reason-codes.xml.gz " + whole),
                FieldsAre(1, AllOf(HasSubstr("not known in OLD"), HasSubstr("not known in NEW")), ""));
}

TEST_F(DiffTest, WrongUseAndUnreadableFilesHaveStatusesOfTheirOwn) {
    const std::string server = Save("server", "server", kSystem), text = fFolder.Write("text.xml", "no XML");
    const struct {
        std::string arguments;
        int status;
        const char* message;
    } cases[] = {
        {"", 2, "OLD is required"},
        {server + " " + server + " --timeout 3", 2, "NEW and --timeout do not go together"},
        {"--from " + server + " " + server + " " + server, 2, "--from and NEW do not go together"},
        {"--quiet --json " + server, 2, "--quiet and --json do not go together"},
        {"--class CIM_ComputerSistem " + server + " " + server, 2, "did you mean 'CIM_ComputerSystem'"},
        {text + " " + server, 3, "cannot read the collection"},
        {server + " " + text, 3, "cannot read the collection"},
        {server + " " + server + " >/dev/full", 4, "cannot write standard output"},
    };
    for (const auto& [arguments, status, message] : cases)
        EXPECT_THAT(RunKyr("diff " + arguments), FieldsAre(status, "", HasSubstr(message))) << arguments;
}
