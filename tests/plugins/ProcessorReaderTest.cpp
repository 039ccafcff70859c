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
