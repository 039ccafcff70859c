#include <algorithm>

#include "SavedMachine.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(TableTest, HasALineForEachInstance) {
    const TSavedMachine server("server");
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"disks --columns Name,size,SerialNumber", "",
         "Name           Size  SerialNumber\n"
         "sda   1.1 Terabytes  ZAD0EXM1\n"
         "sdb   1.1 Terabytes  ZAD0EXM2\n"},
        {"disks --columns Name,Size,Model,SerialNumber", "COLUMNS=20",
         "Name           Size  Model         SerialNumber\n"
         "sda   1.1 Terabytes  ST1200MM0009  ZAD0EXM1\n"},
        {"bond0 eno1np0 --columns Name,Driver", "", "Name     Driver\nbond0    -\neno1np0  i40e\n"},
        {"sda --csv --raw --columns Name,Size,Caption", "", "Name,Size,Caption\r\nsda,1200243695616,ST1200MM0009\r\n"},
        {"bond0 --csv --columns Name,Driver,IPAddresses", "",
         "Name,Driver,IPAddresses\r\nbond0,,\"192.0.2.20/24, 192.0.2.21/24, 2001:db8:20::20/64, "
         "fe80::3eec:efff:fe00:1000/64\"\r\n"},
        {"memory --table", "", "MOLTA_SystemMemory (1)\nCaption "},
        {"bios --csv --raw --columns ReleaseDate", "", "ReleaseDate\r\n2023-08-24T00:00:00+00:00\r\n"},
        {"--columns Name,FileSystemType,UsedSpace", "", "Name "},
    };
    for (const auto& [arguments, environment, table] : cases) {
        const TRunResult run = server.Show(arguments, environment);
        EXPECT_THAT(run, FieldsAre(0, StartsWith(table), "")) << arguments;
        EXPECT_THAT(run.out, Not(HasSubstr("no room"))) << arguments;
    }
}

TEST_F(TerminalTest, TablesFitWithoutValuesThatLookWholeAndAreNot) {
    const TSavedMachine server("server");
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"40", "disks --table --raw",
         "Name           Size  Model\n"
         "sda   1200243695616  ST1200MM0009\n"
         "sdb   1200243695616  ST1200MM0009\n"
         "no room for SerialNumber, BusType,\n"
         "Rotational, FirmwareRevision\n"},
        {"32", "eno1np0 --columns Name,CurrentAddress,Driver",
         "Name     CurrentAddress\neno1np0  3c:ec:ef:00:10:00\nno room for Driver\n"},
        {"40", "fs --table",
         "Name\n"
         "/dev/mapper/vg0-root\n"},
        {"50", "bond0 --columns Name,IPAddresses,Driver",
         "Name   IPAddresses                       Driver\n"
         "bond0  192.0.2.20/24, 192.0.2.21/24,...  -\n"},
        {"24", "mounts --columns Name", "Name\n/\n"},
        {"20", "fs --columns Name,Label", "Name\n/dev/mapper/vg0-root\n/dev/mapper/vg0-var-\n-lib\n"},
        {"20", "fs --csv --columns Name,Label", "Name,Label\n/dev/mapper/vg0-root,root\n"},
    };
    for (const auto& [width, arguments, table] : cases) {
        const std::string command = std::string(KYR_PROGRAM " show ") + server.File() + " " + arguments;
        std::string out = RunOnTerminal(std::string("COLUMNS=") + width + " TERM=dumb", command).out;
        out.erase(std::remove(out.begin(), out.end(), '\r'), out.end());
        EXPECT_THAT(out, StartsWith(table)) << arguments;
        EXPECT_TRUE(out.find(",Label") != out.npos || !HasLineOver(std::stoul(width), out)) << out;
    }
}

TEST(TableTest, LinesAreInTheOrderOfTheNamesThatTheyShow) {
    EXPECT_EQ(TSavedMachine("nvme").Show("volumes --columns Name,Caption").out,
              "Name  Caption\n"
              "dm-0  /dev/mapper/mpatha\n"
              "dm-1  /dev/mapper/mpatha-part1\n"
              "dm-2  /dev/mapper/vgsys-swap\n"
              "dm-3  /dev/mapper/vgsys-root\n");
}

TEST(TableTest, RefusesWhatItCannotPrint) {
    const TSavedMachine server("server");
    const std::pair<const char*, const char*> cases[] = {
        {"disks --columns Nme", "kyr: unknown property 'Nme'; did you mean 'Name'?\n"},
        {"--columns Tag,SerialNumbr", "kyr: unknown property 'SerialNumbr'; did you mean 'SerialNumber'?\n"},
        {"--columns Tag,Driver", "kyr: no class has all of the columns Tag, Driver\n"},
        {"memory --csv",
         "kyr: the classes MOLTA_SystemMemory, MOLTA_PhysicalMemory, MOLTA_MemoryArray have columns of their own: say "
         "by "
         "--columns which are wanted\n"},
        {"disks --table --json", "kyr: --table and --json do not go together (try 'kyr show --help')\n"},
    };
    for (const auto& [arguments, message] : cases)
        EXPECT_THAT(server.Show(arguments), FieldsAre(2, "", message)) << arguments;
}

TEST(TableTest, HostileTextsAreVisibleAndTheSameInEachLocale) {
    const TSavedMachine hostile("hostile");
    const std::string table = hostile.Show("disks --columns Name,Model").out;
    EXPECT_THAT(table, AllOf(HasSubstr("\nsda   \"<&>'\\x07\\x1B]0;x\\x07 \\xFF\\xFE"), Not(HasSubstr("\x1b"))));
    EXPECT_EQ(hostile.Show("disks --columns Name,Model", "LC_ALL=C").out, table);
    EXPECT_THAT(hostile.Show("disks --csv --columns Name,Model").out, HasSubstr("\r\nsda,\"\"\"<&>'\\x07"));
}

TEST(GetTest, PrintsValuesAlone) {
    const TSavedMachine server("server");
    const std::pair<const char*, const char*> cases[] = {
        {"OperatingSystem.Version", "12\n"},
        {"disks.size", "1.1 Terabytes\n1.1 Terabytes\n"},
        {"'DiskDrive[SerialNumber=ZAD0EXM2].Name'", "sdb\n"},
        {"'DiskDrive[serialnumber=\"ZAD0EXM2\"].Size' --raw", "1200243695616\n"},
        {"'disks[Size=1.1 Terabytes].Name'", "sda\nsdb\n"},
        {"sda.Size --raw", "1200243695616\n"},
        {"bond0.100.VLANID --raw", "100\n"},
        {"'DiskDrive.DeviceID=\"/dev/sda\".Name'", "sda\n"},
        {"bios.ReleaseDate --raw", "2023-08-24T00:00:00+00:00\n"},
        {"bond0.IPAddresses", "192.0.2.20/24, 192.0.2.21/24, 2001:db8:20::20/64, fe80::3eec:efff:fe00:1000/64\n"},
        {"serialNumber", "KQ12345\n"},
        {"systemname", "db01.example.net\n"},
    };
    for (const auto& [arguments, values] : cases)
        EXPECT_THAT(server.Get(arguments), FieldsAre(0, values, "")) << arguments;
}

TEST(GetTest, TellsWhyThereIsNoValue) {
    const TSavedMachine server("server"), machine("virtual");
    const std::tuple<const TSavedMachine&, const char*, int, const char*, const char*> cases[] = {
        {server, "adapters.Driver", 1, "i40e\ni40e\nmlx5_core\n", "kyr: no Driver of 5 instances: does not apply\n"},
        {server, "bond0.Driver", 3, "", "kyr: no Driver of bond0 (bond): "},
        {server, "'disks[SerialNumber=x].Size'", 3, "", "kyr: there is no such instance\n"},
        {server, "batteries.Caption", 3, "", "kyr: there is no such instance\n"},
        {machine, "serialNumber", 3, "", "kyr: no serialNumber: "},
        {server, "serialNumbr", 2, "", "kyr: 'serialNumbr' is no NAME.PROPERTY, "},
        {server, "'disks[Name].Size'", 2, "", "kyr: 'disks[Name].Size' is no NAME.PROPERTY, "},
        {server, "disks.Sise", 2, "", "kyr: unknown property 'Sise'; did you mean 'Size'?\n"},
        {server, "'disks[Nam=sda].Size'", 2, "", "kyr: unknown property 'Nam'; did you mean 'Name' or "},
        {server, "sdz.Size", 2, "", "kyr: nothing is called 'sdz': "},
        {server, ".Size", 2, "", "kyr: '.Size' is no NAME.PROPERTY, "},
    };
    for (const auto& [from, arguments, status, out, error] : cases)
        EXPECT_THAT(from.Get(arguments), FieldsAre(status, StartsWith(out), StartsWith(error))) << arguments;
}
