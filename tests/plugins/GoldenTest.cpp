// All that kyr tells of the machines in tests/fixtures/machines. After a change that is meant, run this test with
// KYR_RENEW_GOLDENS=1 in the environment, and read line by line what changed in tests/plugins/expected.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/KyrRun.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"

namespace {

constexpr const char* kMachines[] = {"server", "laptop", "virtual", "container",  "nvme", "old",
                                     "power",  "board",  "hostile", "unreadable", "empty"};

/// With "n{4096}" for a run of so many bytes.
std::string WithoutRuns(const std::string& text) {
    std::string plain;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find_first_not_of(text[at], at), text.size());
        plain += end - at > 100 ? text[at] + ("{" + std::to_string(end - at) + "}") : text.substr(at, end - at);
        at = end;
    }
    return plain;
}

bool IsScope(const std::string& key) {
    return key == "SystemName" || key == "CSName" || key.find("CreationClassName") != std::string::npos;
}

/// With "\x1B" and the like for what is not printable ASCII.
std::string Visible(const std::string& text) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string visible;
    for (const unsigned char c : text)
        visible += c >= ' ' && c < 127 ? std::string(1, c) : std::string("\\x") + kDigits[c / 16] + kDigits[c % 16];
    return visible;
}

/// "  MOLTA_DiskDrive /dev/sda"
std::string EndText(const TCIMReference& reference) {
    EXPECT_EQ(StatusOf([&] { reference.GetCIMElement(); }), kyrStatusOK) << reference.GetPath() << " was not collected";
    std::string text = "  " + reference.GetClassName();
    for (const auto& [key, value] : reference.EnumerateKeyBindings())
        if (!IsScope(key)) text += ' ' + Visible(value.ToString(10));
    return text;
}

/// What each association ties together, a line for each.
std::string TiesOf(const std::string& collection) {
    TContainer container;
    container.PopulateContainerFromFile(collection);
    std::string text;
    for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true))
        for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
            if (!cls->IsAssociation()) continue;
            text += cls->GetName();
            for (const TCIMProperty* property : instance->EnumerateProperties())
                if (property->GetValue().IsReference()) text += EndText(property->GetValue());
            text += '\n';
        }
    return text;
}

/// With "VERSION" for the version that kyr gives itself, which each release changes.
std::string WithoutOwnVersion(std::string text) {
    const std::string before = "  Name               kyrcore\n  Version            ", version = KYRCORE_VERSION;
    const size_t at = text.find(before + version);
    return at == std::string::npos ? text : text.replace(at + before.size(), version.size(), "VERSION");
}

std::string Tell(const std::string& machine) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/collection.xml";
    const TRunResult run = RunKyrOn(machine, "collect --also updates --stable " ALL_PLUGINS " -o " + file);
    const std::string choice = " --class CIM_ManagedElement --stable --provenance";
    return WithoutOwnVersion(WithoutRuns(RunKyr("show " + file + choice).out + '\n' + TiesOf(file) + "\nExit status " +
                                         std::to_string(run.status) + '\n' + run.err));
}

void CompareWithGolden(const std::string& name, const std::string& text) {
    const std::string expected = EXPECTED "/" + name + ".txt";
    const TempFolder folder;
    const std::string actual = folder.Write("actual.txt", text);
    if (std::getenv("KYR_RENEW_GOLDENS") != nullptr) std::ofstream(expected) << ReadFile(actual);
    const TRunResult difference = RunShell("diff -u " + expected + ' ' + actual);
    EXPECT_EQ(difference.status, 0) << difference.out << difference.err;
}

class GoldenTest : public ::testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(GoldenTest, MachineIsToldAsExpected) {
    const LogCapture log;
    const std::string actual = Tell(GetParam());
    CompareWithGolden(GetParam(), actual);
    EXPECT_EQ(CountIn(actual, "no reason is given"), 0u) << "a value is missing without a reason";
}

TEST_P(GoldenTest, SummaryIsTheSameLiveAndSaved) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/collection.xml", machine = GetParam();
    const TRunResult live = RunKyrOn(machine, "summary " ALL_PLUGINS);
    CompareWithGolden(machine + "-summary",
                      live.out + "\nExit status " + std::to_string(live.status) + '\n' + live.err);
    EXPECT_FALSE(HasLineOver(80, live.out));
    EXPECT_THAT(RunKyrOn(machine, ""), FieldsAre(live.status, live.out, live.err));
    RunKyrOn(machine, "collect " ALL_PLUGINS " -o " + file);
    EXPECT_THAT(RunKyr("summary " + file), FieldsAre(live.status, live.out, live.err));
}

// Disks are asked for their health only if that is granted, so that the other machines tell nothing of it.
TEST(GrantedTest, HealthOfDisksIsToldAsExpected) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/collection.xml", grant = " --grant health:rawio " ALL_PLUGINS,
                      classes = "DiskDrive DiskHealth SMARTAttribute DiskDriveHealth DiskHealthAttribute";
    const TRunResult collected = RunKyrOn("disks", "collect " + classes + " -o " + file + grant);
    std::string text = RunKyr("show DiskHealth --provenance " + file).out;
    text += '\n' + RunKyr("show SMARTAttribute --table " + file).out + '\n' + TiesOf(file) + "\nExit status " +
            std::to_string(collected.status) + '\n' + collected.err;
    for (const std::string& options : {grant, std::string(" " ALL_PLUGINS)}) {
        const TRunResult run = RunKyrOn("disks", "summary" + options);
        text += '\n' + run.out + run.err;
        EXPECT_FALSE(HasLineOver(80, run.out));
    }
    CompareWithGolden("disks", text);
}

// Such as earlier versions saved.
TEST(SummaryTest, GraphicsAreToldOfFilesWithoutDisplayControllers) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/collection.xml";
    std::filesystem::create_directory_symlink(SYSTEM_PLUGINS "/pci", folder.Path() + "/pci");
    RunKyrOn("server", "collect --plugins " + folder.Path() + " -o " + file);
    EXPECT_THAT(RunKyr("summary " + file).out, HasSubstr("\nGraphics   VGA compatible controller: ASPEED"));
}

TEST(SystemRootTest, RootThatNamesNoFolderIsAnErrorOfEachPlugin) {
    const TRunResult run = RunKyrOn("none", "collect --json --grant health:rawio " ALL_PLUGINS);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(CountIn(run.out, "\"log\": [\"error: KYR_SYSTEM_ROOT names no folder: " MACHINES "/none\""),
              NUMBER_OF_PLUGINS)
        << run.out;
    EXPECT_EQ(CountIn(run.err, "returned fail (kyrStatusFail): KYR_SYSTEM_ROOT names no folder: " MACHINES "/none ("),
              NUMBER_OF_PLUGINS);
}

INSTANTIATE_TEST_SUITE_P(Machines, GoldenTest, ::testing::ValuesIn(kMachines),
                         [](const auto& test) { return std::string(test.param); });
