#include "SystemFacts.h"
#include "support/TestSupport.h"

namespace {

/// The value, or why there is none.
std::string Show(const TFact<std::string>& fact) {
    return fact ? *fact : AbsenceText(fact.absence) + (": " + fact.source);
}
template <typename T>
std::string Show(const TFact<T>& number) {
    return Show(number.Map([](T value) { return std::optional(std::to_string(value)); }));
}

TSystemFacts ReadFile(const std::string& path, const std::string& content) {
    const TempFolder machine;
    machine.Write(path, content);
    return ReadSystem(TSystemRoot(machine.Path()));
}
TSystemFacts ReadDmiField(const std::string& name, const std::string& content) {
    return ReadFile("sys/class/dmi/id/" + name, content);
}

}  // namespace

TEST(SystemReaderTest, PlaceholdersOfMakersAreNotPresent) {
    for (const char* text : {"\n", "To be filled by O.E.M.\n", "NOT SPECIFIED", "Default string  \n"})
        EXPECT_EQ(Show(ReadDmiField("product_serial", text).serialNumber),
                  "not present: /sys/class/dmi/id/product_serial")
            << text;
    EXPECT_EQ(Show(ReadDmiField("product_serial", " Not Specified 2 \n").serialNumber), "Not Specified 2");
}

TEST(SystemReaderTest, MachineTypeModelIsSevenCharactersThatBeginWithADigit) {
    for (const char* name : {"Toughie", "4185C2", "4185C2XY", "4185-2X", "4185C2\xe4"})
        for (const char* field : {"product_name", "product_sku"})
            EXPECT_FALSE(ReadDmiField(field, name).machineTypeModel) << name;
    EXPECT_EQ(Show(ReadDmiField("product_name", "4185C2X").machineTypeModel), "4185C2X");
}

TEST(SystemReaderTest, NumbersAndDatesOutOfRangeAreNotSupported) {
    for (const char* date : {"13/01/2020", "00/10/2020", "02/30/2020", "2020-01-01", "01/02/0020", "x"})
        EXPECT_EQ(Show(ReadDmiField("bios_date", date).biosDate), "not supported: /sys/class/dmi/id/bios_date") << date;
    for (const char* type : {"x", "-1", "256", "99999999999999999999999"})
        EXPECT_FALSE(ReadDmiField("chassis_type", type).chassisType) << type;
    EXPECT_FALSE(ReadFile("proc/stat", "cpu 1\nbtime x\n").bootTime);
}

TEST(SystemReaderTest, OsReleaseIsReadAsAShellWould) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"NAME=\"Two Words\"", "Two Words"}, {"NAME='It is \\n so'", "It is \\n so"}, {"NAME=\"a\\\"b\\$c\"", "a\"b$c"},
        {"NAME=a\\ b", "a b"}, {"NAME=first\nNAME=last", "last"}, {"\r\nNAME=Dos\r\n", "Dos"},
        {"NAME=\"open", "open"}, {"NAME=end\\", "end\\"}, {"NAME=\"\"", "not present: /etc/os-release"},
        {"NAMES=other\n#NAME=comment", "not present: /etc/os-release"},
    };
    // clang-format on
    for (const auto& [lines, expected] : cases)
        EXPECT_EQ(Show(ReadFile("etc/os-release", lines).osName), expected) << lines;
}

TEST(SystemReaderTest, RollingDistributionHasItsBuildForAVersion) {
    EXPECT_EQ(Show(ReadFile("usr/lib/os-release", "NAME=Roll\nBUILD_ID=rolling\n").osVersion), "rolling");
}

TEST(SystemReaderTest, HypervisorIsNamedByFirmwareOrKernel) {
    const std::string dmi = "sys/class/dmi/id/", clocks = "sys/devices/system/clocksource/clocksource0/";
    const std::pair<std::vector<std::pair<std::string, const char*>>, const char*> cases[] = {
        {{{dmi + "sys_vendor", "VMware, Inc."}}, "VMware"},
        {{{dmi + "sys_vendor", "Microsoft Corporation"}, {dmi + "product_name", "Virtual Machine"}},
         "Microsoft Hyper-V"},
        {{{dmi + "sys_vendor", "Microsoft Corporation"}, {"proc/cpuinfo", "flags : fpu"}},
         "not present: /proc/cpuinfo"},
        {{{"sys/hypervisor/type", "xen\n"}}, "Xen"},
        {{{clocks + "available_clocksource", "tsc kvm-clock acpi_pm \n"}, {dmi + "sys_vendor", "QEMU"}}, "KVM"},
        {{{clocks + "available_clocksource", "tsc \n"}, {dmi + "sys_vendor", "QEMU"}}, "QEMU"},
        {{{"proc/cpuinfo", "flags : fpu hypervisor lm"}}, "not supported: /proc/cpuinfo"},
    };
    for (const auto& [files, expected] : cases) {
        const TempFolder machine;
        for (const auto& [path, content] : files) machine.Write(path, content);
        EXPECT_EQ(Show(ReadSystem(TSystemRoot(machine.Path())).hypervisor), expected) << files[0].second;
    }
}
