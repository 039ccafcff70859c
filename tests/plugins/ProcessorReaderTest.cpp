#include "CpuList.h"
#include "ProcessorFacts.h"
#include "support/TestSupport.h"

namespace {

std::string Show(const std::vector<uint32_t>& numbers) {
    std::string text;
    for (const uint32_t number : numbers) text += std::to_string(number) + " ";
    return text;
}

std::string ShowCores(const TProcessorFacts& facts) {
    std::string text;
    for (const TCore& core : facts.cores) text += core.name + ": " + Show(core.threads) + "\n";
    return text;
}

/// "model by manufacturer, number, stepping: bits, MHz"
std::string ShowModel(const TPackage& package) {
    return package.modelName.ValueOr("?") + " by " + package.manufacturer.ValueOr("?") + ", " +
           package.model.ValueOr("?") + ", " + package.stepping.ValueOr("?") + ": " +
           std::to_string(package.dataWidth.ValueOr(0)) + " bits, " + std::to_string(package.clock.ValueOr(0)) + " MHz";
}

std::string CpuPath(int cpu, const std::string& file) {
    return "sys/devices/system/cpu/cpu" + std::to_string(cpu) + '/' + file;
}

}  // namespace

TEST(ProcessorReaderTest, ListsOfNumbersAreReadOrRefusedAsAWhole) {
    const std::pair<const char*, const char*> cases[] = {
        {"0", "0 "}, {"0-2,8", "0 1 2 8 "}, {"3,1", "3 1 "}, {"", ""}, {"0-8191", "many"}};
    for (const auto& [text, expected] : cases) {
        const auto numbers = ParseCpuList(text).value();
        EXPECT_EQ(numbers.size() > 100 ? "many" : Show(numbers), expected) << text;
    }
    for (const char* text : {"1-", "-1", "2-1", "0-4294967295", "x", "0-8191,0"})
        EXPECT_EQ(ParseCpuList(text), std::nullopt) << text;
}

TEST(ProcessorReaderTest, MasksAreReadAsLists) {
    const std::pair<const char*, const char*> cases[] = {
        {"f", "0-3"}, {"00000100,00000000,00000005", "0,2,72"}, {"0", ""}, {"80000000,00000001\n", "0,63"}};
    for (const auto& [text, expected] : cases) EXPECT_EQ(FormatCpuList(ParseCpuMask(text).value()), expected) << text;
    for (const std::string text : {"", "x", "100000000", "-1", "1,g"})
        EXPECT_EQ(ParseCpuMask(text), std::nullopt) << text;
    std::string groups = "1";
    for (size_t i = 0; i < kMaxCpus / 32; ++i) groups += ",0";
    EXPECT_EQ(ParseCpuMask(groups), std::nullopt) << "a number above the most";
}

TEST(ProcessorReaderTest, AMaskThatIsNotUnderstoodIsNotSupported) {
    const TempFolder machine;
    for (const char* file : {"topology/core_id", "cache/index0/level"}) machine.Write(CpuPath(0, file), "1");
    machine.Write(CpuPath(0, "cache/index0/shared_cpu_map"), "all");
    const TCache cache = ReadProcessors(TSystemRoot(machine.Path())).caches.at(0);
    EXPECT_EQ(cache.threads.absence, EAbsence::eNotSupported);
    EXPECT_EQ(cache.threads.source, "/" + CpuPath(0, "cache/index0/shared_cpu_map"));
}

TEST(ProcessorReaderTest, EachArchitectureNamesItsModels) {
    const std::string arm =
        "processor: 0\nCPU implementer: 0x41\nCPU architecture: 8\nCPU variant: 0x1\nCPU revision: 2\n";
    const std::pair<std::string, const char*> cases[] = {
        {arm + "CPU part: 0xd08\n", "Cortex-A72 by ARM, 0xd08, r1p2: 64 bits, 0 MHz"},
        {arm + "CPU part: 0xfff\nmodel name: ARMv8 Processor rev 2 (v8l)\n",
         "ARMv8 Processor rev 2 (v8l) by ARM, 0xfff, r1p2: 64 bits, 0 MHz"},
        {arm + "CPU part: 0xd03\n\nprocessor: 1\nCPU implementer: 0x41\nCPU part: 0xd08\nCPU revision: 3\n",
         "Cortex-A53 + Cortex-A72 by ARM, 0xd03 + 0xd08, r1p2 + 3: 64 bits, 0 MHz"},
        {"Processor: ARMv7 rev 10 (v7l)\nprocessor: 0\n\nCPU implementer: 0x41\nCPU architecture: 7\nCPU variant: 0x2\n"
         "CPU part: 0xc09\nCPU revision: 10\n\nHardware: i.MX 6Quad\nRevision: 0000\n",
         "Cortex-A9 by ARM, 0xc09, r2p10: 32 bits, 0 MHz"},
        {"processor: 0\nCPU implementer: 0x99\nCPU part: none\n", "? by 0x99, none, ?: 0 bits, 0 MHz"},
        {"processor: 0\ncpu: POWER9 (raw), altivec supported\nclock: 3800.000000MHz\nrevision: 2.2 (pvr 004e 1202)\n\n"
         "platform: PowerNV\nmodel: 8335-GTH\n",
         "POWER9 (raw), altivec supported by ?, ?, 2.2 (pvr 004e 1202): 0 bits, 3800 MHz"},
        {"vendor_id: IBM/S390\nfeatures: esan3 zarch\nprocessor 0: version = FF,  identification = 2733E8,  machine = "
         "2964\n\n"
         "cpu number: 0\ncpu MHz dynamic: 5000\n",
         "? by IBM/S390, 2964, ?: 64 bits, 5000 MHz"},
        {"processor: 0\nhart: 1\nisa: rv64imafdc\nmmu: sv39\nuarch: sifive,u74-mc\n",
         "sifive,u74-mc by ?, ?, ?: 64 bits, 0 MHz"},
        {"system type: generic\n\nprocessor: 0\nCPU Family: Loongson-64bit\nModel Name: Loongson-3A5000\n"
         "CPU Revision: 0x11\nCPU MHz: 2500.00\nISA: loongarch32 loongarch64\n",
         "Loongson-3A5000 by ?, ?, 0x11: 64 bits, 2500 MHz"},
    };
    for (const auto& [cpuInfo, expected] : cases) {
        const TempFolder machine;
        machine.Write("proc/cpuinfo", cpuInfo);
        machine.Write("sys/devices/system/cpu/online", cpuInfo.find("processor: 1") == std::string::npos ? "0" : "0-1");
        machine.Write("sys/devices/system/cpu/present", "0-1");
        EXPECT_EQ(ShowModel(ReadProcessors(TSystemRoot(machine.Path())).packages.at(0)), expected) << cpuInfo;
    }
}

TEST(ProcessorReaderTest, CoresTellTheirModelsWhereAProcessorHasSeveral) {
    const TempFolder machine;
    const std::string parts[] = {"0xd03", "0xd08", "0xd08"};
    for (const char* package : {"-1", "7"}) {
        for (int cpu = 0; cpu < 3; ++cpu)
            machine.Write(CpuPath(cpu, "topology/physical_package_id"), cpu == 2 ? package : "-1");
        std::string text;
        for (int cpu = 0; cpu < 3; ++cpu)
            text += "processor: " + std::to_string(cpu) + "\nCPU implementer: 0x41\nCPU part: " + parts[cpu] + "\n\n";
        machine.Write("proc/cpuinfo", text);
        std::string names;
        for (const TCore& core : ReadProcessors(TSystemRoot(machine.Path())).cores)
            names += core.name + ": " + core.modelName.ValueOr("-") + "\n";
        const bool isOther = package == std::string("7");
        EXPECT_EQ(names, std::string("socket0/core0: Cortex-A53\nsocket0/core1: Cortex-A72\n") +
                             (isOther ? "socket7/core2: -\n" : "socket0/core2: Cortex-A72\n"));
    }
}

TEST(ProcessorReaderTest, PackagesWithoutIdsAreToldApartByTheirThreads) {
    const TempFolder machine;
    for (int cpu = 0; cpu < 8; ++cpu) {
        machine.Write(CpuPath(cpu, "topology/physical_package_id"), "-1");
        machine.Write(CpuPath(cpu, "topology/core_id"), std::to_string(cpu % 4 / 2 * 8));
        machine.Write(CpuPath(cpu, "topology/core_siblings"), cpu < 4 ? "0f" : "f0");
        machine.Write(CpuPath(cpu, "topology/thread_siblings"), cpu % 4 < 2 ? (cpu < 4 ? "03" : "30")
                                                                : cpu < 4   ? "0c"
                                                                            : "c0");
    }
    EXPECT_EQ(ShowCores(ReadProcessors(TSystemRoot(machine.Path()))),
              "socket0/core0: 0 1 \nsocket0/core8: 2 3 \nsocket1/core0: 4 5 \nsocket1/core8: 6 7 \n");
}

TEST(ProcessorReaderTest, PackagesOfMainframesAreNumberedInEachBook) {
    const TempFolder machine;
    for (int cpu = 0; cpu < 4; ++cpu) {
        machine.Write(CpuPath(cpu, "topology/physical_package_id"), "1");
        machine.Write(CpuPath(cpu, "topology/book_id"), std::to_string(cpu % 2));
        machine.Write(CpuPath(cpu, "topology/drawer_id"), std::to_string(cpu / 2));
    }
    std::string names;
    for (const TPackage& package : ReadProcessors(TSystemRoot(machine.Path())).packages) names += package.name + ' ';
    EXPECT_EQ(names, "drawer0/book0/socket1 drawer0/book1/socket1 drawer1/book0/socket1 drawer1/book1/socket1 ");
}

TEST(ProcessorReaderTest, CpuInfoTellsTheTopologyWhereThereIsNoSysfs) {
    const TempFolder machine;
    machine.Write("proc/cpuinfo",
                  "processor: 0\nphysical id: 3\ncore id: 1\n\nprocessor: 1\nphysical id: 3\ncore id: 1\n\n"
                  "processor: 2\nphysical id: 3\ncore id: 2\n\nprocessor: 3\n");
    const TProcessorFacts facts = ReadProcessors(TSystemRoot(machine.Path()));
    EXPECT_EQ(ShowCores(facts), "socket3/core1: 0 1 \nsocket3/core2: 2 \nsocket0/core3: 3 \n");
}

TEST(ProcessorReaderTest, CoresOfOneNumberStayApartWhenTheirSiblingsDo) {
    const TempFolder machine;
    for (const std::string list : {"present", "online"}) machine.Write("sys/devices/system/cpu/" + list, "0-1");
    for (const std::string cpu : {"0", "1"}) {
        machine.Write("sys/devices/system/cpu/cpu" + cpu + "/topology/core_id", "0");
        machine.Write("sys/devices/system/cpu/cpu" + cpu + "/topology/thread_siblings_list", cpu);
    }
    EXPECT_EQ(ShowCores(ReadProcessors(TSystemRoot(machine.Path()))), "socket0/core0: 0 \nsocket0/core0/cpu1: 1 \n");
}

TEST(ProcessorReaderTest, NoProcessorIsClaimedWhereNothingTellsOfOne) {
    const std::string cpus = "sys/devices/system/cpu/";
    // A file of the machine, how many threads it tells of, and why no core is known.
    const std::tuple<std::string, const char*, size_t, EAbsence> cases[] = {
        {"etc/os-release", "", 0, EAbsence::eNotPresent},
        {"proc/cpuinfo", "vendor_id : IBM/S390\nprocessor 0: version = FF\n", 0, EAbsence::eNotPresent},
        {cpus + "online", "all of them", 0, EAbsence::eNotSupported},
        {cpus + "present", "0-63", 64, EAbsence::eNotPresent},
    };
    for (const auto& [path, content, threads, absence] : cases) {
        const TempFolder machine;
        machine.Write(path, content);
        const TProcessorFacts facts = ReadProcessors(TSystemRoot(machine.Path()));
        EXPECT_TRUE(facts.packages.empty() && facts.cores.empty()) << path;
        EXPECT_EQ(facts.threads.size(), threads) << path;
        EXPECT_FALSE(facts.coreListing) << path;
        EXPECT_EQ(facts.coreListing.absence, absence) << path;
        EXPECT_EQ(facts.coreListing.source, "/sys/devices/system/cpu/online") << path;
        for (const TThread& thread : facts.threads) EXPECT_FALSE(thread.isOnline);
    }
}

TEST(ProcessorReaderTest, ProcessorsOfOtherArchitecturesAreTakenFromSysfs) {
    const std::string cpus = "sys/devices/system/cpu/";
    for (const bool hasLists : {true, false}) {
        const TempFolder machine;
        machine.Write("proc/cpuinfo", "vendor_id : IBM/S390\n# processors : 64\nprocessor 0: version = FF\n");
        if (hasLists) machine.Write(cpus + "present", "0-63");
        for (int cpu = 0; cpu < 64; ++cpu) {
            const std::string topology = cpus + "cpu" + std::to_string(cpu) + "/topology/";
            machine.Write(topology + "physical_package_id", std::to_string(cpu / 32));
            machine.Write(topology + "core_id", std::to_string(cpu / 2));
        }
        const TProcessorFacts facts = ReadProcessors(TSystemRoot(machine.Path()));
        ASSERT_EQ(facts.packages.size(), 2u);
        EXPECT_EQ(facts.packages[1].coreCount.ValueOr(0), 16u);
        EXPECT_EQ(facts.packages[1].threadCount.ValueOr(0), 32u);
        EXPECT_EQ(facts.packages[1].modelName.source, "/proc/cpuinfo");
        EXPECT_TRUE(facts.coreListing);
    }
}
