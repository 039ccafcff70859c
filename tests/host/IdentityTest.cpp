#include "KyrRun.h"

TEST(IdentityTest, PrintsWhatTheServerIs) {
    const char* const told =
        "System name             db01.example.net\n"
        "Product                 ES Rack 2200 -[4185C2X]-\n"
        "Machine type and model  4185C2X\n"
        "Machine type            4185\n"
        "Model                   C2X\n"
        "Serial number           KQ12345\n"
        "Machine ID              0eedb226-312d-4aa4-b63f-2ce3b9260b16\n"
        "Operating system        Debian GNU/Linux\n"
        "Version                 12\n"
        "Point release           12.5\n"
        "Kernel release          6.1.0-18-amd64\n"
        "Boot firmware           UEFI\n"
        "Data source version     " KYRCORE_VERSION "\n";
    EXPECT_THAT(RunKyrOn("server", "identity"), FieldsAre(0, told, _));
}

TEST(IdentityTest, WhatCannotBeToldHasItsReason) {
    const char* const told =
        "System name             builder\n"
        "Product                 not available (not present: /sys/class/dmi/id/product_name)\n"
        "Machine type and model  not available (not present: /sys/class/dmi/id/product_name)\n"
        "Machine type            not available (not present: /sys/class/dmi/id/product_name)\n"
        "Model                   not available (not present: /sys/class/dmi/id/product_name)\n"
        "Serial number           not available (not present: /sys/class/dmi/id/product_serial)\n"
        "Machine ID              not available (not supported: /etc/machine-id)\n"
        "Operating system        Ubuntu\n"
        "Version                 24.04\n"
        "Point release           not available (does not apply: the version is the whole release)\n"
        "Kernel release          6.8.0-31-generic\n"
        "Boot firmware           not available (not present: /sys/firmware/efi)\n"
        "Data source version     " KYRCORE_VERSION "\n";
    EXPECT_THAT(RunKyrOn("virtual", "identity"), FieldsAre(0, told, _));
}

TEST(IdentityTest, HostIsKnownWhateverClassesAreChosen) {
    const TempFolder folder;
    const std::string file = folder.Path() + "/one-class.xml", choice = " --class MOLTA_OperatingSystem --json";
    RunKyrOn("server", "collect --class MOLTA_OperatingSystem -o " + file);
    for (const TRunResult& run : {RunKyrOn("server", "show" + choice), RunKyr("show " + file + choice)}) {
        EXPECT_THAT(run.out, HasSubstr("\"name\": \"db01.example.net\",\n    \"machineId\": "
                                       "\"0eedb226-312d-4aa4-b63f-2ce3b9260b16\",\n    \"uuid\": "
                                       "\"4c4c4544-0051-3110-8031-b2c04f313233\",\n    \"serialNumber\": \"KQ12345\""));
        EXPECT_EQ(CountIn(run.out, "MOLTA_ComputerSystem.CreationClassName"), 0u) << "that class was not chosen";
    }
    EXPECT_THAT(RunKyr("identity " + file).out, HasSubstr("Machine ID              0eedb226-"));
}

TEST(IdentityTest, NothingAtAllIsNoResult) {
    const TempFolder root;
    const TRunResult run = RunKyr("identity --plugins " + root.Path());
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(CountIn(run.out, "not available"), 13u);
}
