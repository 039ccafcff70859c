extern "C" {
#include "facts.h"
}

#include <sys/stat.h>

#include "support/TestSupport.h"

namespace {

std::string Text(const char* text) { return text == nullptr ? "(null)" : text; }

/// The facts of a machine whose files are written by the test, or of a stored one.
class TMachine : public TempFolder {
public:
    ~TMachine() { FreeSystemFacts(&fFacts); }

    const SystemFacts& Read(const std::string& root = "") {
        FreeSystemFacts(&fFacts);
        ReadSystemFacts((root.empty() ? Path() : root).c_str(), &fFacts);
        return fFacts;
    }
    void WriteDmi(const std::string& name, const std::string& text) { Write("sys/class/dmi/id/" + name, text); }

private:
    SystemFacts fFacts{};
};

}  // namespace

TEST(SystemReaderTest, ReadsAllFactsOfTheServer) {
    TMachine machine;
    const SystemFacts& facts = machine.Read(MACHINES "/server");
    EXPECT_EQ(Text(facts.hostName), "db01.example.net");
    EXPECT_EQ(Text(facts.assetTag), "INV-004711");
    EXPECT_EQ(Text(facts.machineTypeModel), "4185C2X");
    EXPECT_EQ(facts.chassisType, 23u);
    EXPECT_EQ(facts.biosYear, 2023u);
    EXPECT_EQ(facts.biosMonth, 8u);
    EXPECT_EQ(facts.biosDay, 24u);
    EXPECT_EQ(Text(facts.osVersion), "12");
    EXPECT_EQ(facts.bootTime, 1709280000);
    EXPECT_EQ(facts.upTime, 93784);
}

TEST(SystemReaderTest, MachineOfWhichNothingCanBeReadHasItsKeysAndNoMore) {
    TMachine machine;
    const SystemFacts& facts = machine.Read();
    EXPECT_EQ(Text(facts.hostName), "localhost");
    EXPECT_EQ(Text(facts.osName), "Linux");
    EXPECT_EQ(Text(facts.kernelRelease), "(null)");
    EXPECT_EQ(Text(facts.architecture), "(null)");
    EXPECT_EQ(facts.chassisType, 0u);
    EXPECT_EQ(facts.biosYear, 0u);
    EXPECT_EQ(facts.bootTime, 0);
    EXPECT_EQ(facts.upTime, -1);
}

TEST(SystemReaderTest, DmiTextIsTrimmedAndPlaceholdersAreNoText) {
    const struct {
        std::string field, expected;
    } cases[] = {
        {"  KQ 12345 \n", "KQ 12345"},
        {"\n", "(null)"},
        {"", "(null)"},
        {"To be filled by O.E.M.\n", "(null)"},
        {"NOT SPECIFIED", "(null)"},
        {"Default string  \n", "(null)"},
        {"Not Specified 2", "Not Specified 2"},
        {"\x01\xff", "\x01\xff"},
        {std::string("cut\0off", 7), "cut"},
    };
    for (const auto& c : cases) {
        TMachine machine;
        machine.WriteDmi("product_serial", c.field);
        EXPECT_EQ(Text(machine.Read().serialNumber), c.expected) << c.field;
    }
}

TEST(SystemReaderTest, MachineTypeModelIsSevenCharactersThatBeginWithADigit) {
    const struct {
        const char* name;
        const char* sku;
        const char* expected;
    } cases[] = {
        {"4185C2X", "1111AAA", "4185C2X"}, {"Rack", "4185C2X\n", "4185C2X"}, {"Toughie", "", "(null)"},
        {"4185C2", "", "(null)"},          {"4185C2XY", "", "(null)"},       {"4185-2X", "", "(null)"},
        {"4185C2\xe4", "", "(null)"},
    };
    for (const auto& c : cases) {
        TMachine machine;
        machine.WriteDmi("product_name", c.name);
        machine.WriteDmi("product_sku", c.sku);
        EXPECT_EQ(Text(machine.Read().machineTypeModel), c.expected) << c.name;
    }
}

TEST(SystemReaderTest, NumbersAndDatesOutOfRangeAreNotKnown) {
    for (const char* date : {"13/01/2020", "00/10/2020", "01/32/2020", "2020-01-01", "01/02/0020", "", "x"}) {
        TMachine machine;
        machine.WriteDmi("bios_date", date);
        EXPECT_EQ(machine.Read().biosYear, 0u) << date;
    }
    for (const char* type : {"x", "-1", "256", "99999999999999999999999"}) {
        TMachine machine;
        machine.WriteDmi("chassis_type", type);
        EXPECT_EQ(machine.Read().chassisType, 0u) << type;
    }
}

TEST(SystemReaderTest, OsReleaseIsReadAsAShellWould) {
    const struct {
        const char* line;
        const char* expected;
    } cases[] = {
        {"NAME=Plain", "Plain"},
        {"NAME=\"Two Words\"", "Two Words"},
        {"NAME='It is \\n so'", "It is \\n so"},
        {"NAME=\"a\\\"b\\$c\"", "a\"b$c"},
        {"NAME=a\\ b", "a b"},
        {"NAME=first\nNAME=last", "last"},
        {"NAMES=other\n#NAME=comment", "Linux"},
        {"NAME=", "Linux"},
        {"NAME=\"\"", "Linux"},
        {"\r\nNAME=Dos\r\n", "Dos"},
        {"NAME=\"open", "open"},
        {"NAME=end\\", "end\\"},
    };
    for (const auto& c : cases) {
        TMachine machine;
        machine.Write("etc/os-release", c.line);
        EXPECT_EQ(Text(machine.Read().osName), c.expected) << c.line;
    }
}

TEST(SystemReaderTest, RollingDistributionHasItsBuildForAVersion) {
    TMachine machine;
    machine.Write("usr/lib/os-release", "NAME=Roll\nBUILD_ID=rolling\n");
    EXPECT_EQ(Text(machine.Read().osVersion), "rolling");
}

TEST(SystemReaderTest, LongTextsAreReadWholeUpToTheLimit) {
    TMachine machine;
    machine.WriteDmi("product_name", std::string(70000, 'a'));
    machine.WriteDmi("product_family", std::string(3 << 20, 'b'));
    const SystemFacts& facts = machine.Read();
    EXPECT_EQ(Text(facts.productName), std::string(70000, 'a'));
    EXPECT_EQ(Text(facts.productFamily), std::string(1 << 20, 'b'));
}

TEST(SystemReaderTest, PipeAndFolderInPlaceOfAFileAreNotKnown) {
    TMachine machine;
    machine.WriteDmi("sys_vendor", "Maker");
    const std::string dmi = machine.Path() + "/sys/class/dmi/id/";
    ASSERT_EQ(mkfifo((dmi + "product_name").c_str(), 0600), 0);
    ASSERT_EQ(mkdir((dmi + "product_family").c_str(), 0700), 0);
    const SystemFacts& facts = machine.Read();
    EXPECT_EQ(Text(facts.manufacturer), "Maker");
    EXPECT_EQ(Text(facts.productName), "(null)");
    EXPECT_EQ(Text(facts.productFamily), "(null)");
}
