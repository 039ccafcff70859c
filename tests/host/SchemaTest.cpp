#include "KyrRun.h"

TEST(SchemaTest, TreeShowsEachClassBelowItsSuperclassWithItsPlugin) {
    const TRunResult run = RunKyrWith({}, "schema");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("CIM_Component (abstract) (association)\n"
                                    "  CIM_ConcreteComponent (abstract) (association)\n"
                                    "  CIM_SystemComponent (abstract) (association)\n"
                                    "    CIM_InstalledOS (abstract) (association)\n"
                                    "      MOLTA_InstalledOS (association)  [system " KYRCORE_VERSION "]\n"));
    EXPECT_THAT(run.out, HasSubstr("          CIM_ComputerSystem (abstract)\n"
                                   "            MOLTA_ComputerSystem  [system " KYRCORE_VERSION "]\n"));
}

TEST(SchemaTest, ClassIsDescribedInFull) {
    const TRunResult run = RunKyr("schema molta_operatingsystem");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("MOLTA_OperatingSystem\n"
                                    "  The operating system that runs on the computer.\n"
                                    "\n"
                                    "Superclass  CIM_OperatingSystem\n"
                                    "Plugin      system " KYRCORE_VERSION "\n"
                                    "Qualifiers  Columns={ Caption, Version, PointRelease, KernelRelease, "
                                    "Architecture, BootFirmware, SystemUpTime, LastBootUpTime }, Rank=20\n"
                                    "\n"
                                    "Properties\n"));
    EXPECT_THAT(run.out, HasSubstr("  CSName  string, key, from CIM_OperatingSystem\n"
                                   "      Name of that computer system.\n"));
    EXPECT_THAT(run.out, HasSubstr("  SystemUpTime  uint64, in Seconds, volatile\n"));
}

TEST(SchemaTest, ReferencesAndQualifiersAreShown) {
    EXPECT_THAT(RunKyr("schema CIM_InstalledOS").out,
                AllOf(HasSubstr("Plugin      none\nQualifiers  Abstract=true, Association=true\n"),
                      HasSubstr("  GroupComponent  reference to CIM_ComputerSystem, key\n")));
}

TEST(SchemaTest, WordsAreShownWithTheirNumbers) {
    EXPECT_THAT(RunKyr("schema CIM_OperatingSystem").out, HasSubstr("  OSType  uint16\n"
                                                                    "      The kind of operating system.\n"
                                                                    "      0 = Unknown, 1 = Other, 36 = LINUX\n"));
}

TEST(SchemaTest, NarrowTerminalGetsNarrowLines) {
    const std::string out = RunKyr("schema CIM_OperatingSystem", "COLUMNS=40").out;
    EXPECT_THAT(out, HasSubstr("  UnavailableValues\n"
                               "      string[], from CIM_ManagedElement\n"
                               "      The properties whose value could\n"));
    EXPECT_FALSE(HasLineOver(40, out)) << out;
}

TEST(SchemaTest, ArrayTypesAreShown) {
    EXPECT_THAT(RunKyrWith({"shown"}, "schema TEST_Shown").out, HasSubstr("  Modes  uint16[]\n"));
}
