#include "CpuList.h"
#include "ProcessorFacts.h"
#include "support/TestSupport.h"

namespace {

TProcessorFacts ReadMachine(const std::string& name) { return ReadProcessors(TSystemRoot(MACHINES "/" + name)); }

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

/// How many caches of each level there are: "8 8 1" for ten of them.
std::string CountCaches(const TProcessorFacts& facts) {
    std::vector<uint32_t> counts(4);
    for (const TCache& cache : facts.caches) ++counts.at(cache.level.ValueOr(0));
    return Show({counts.begin() + 1, counts.end()});
}

}  // namespace

TEST(ProcessorReaderTest, ListsOfNumbersAreReadOrRefusedAsAWhole) {
    const struct {
        const char *text, *expected;
    } cases[] = {
        {"0", "0 "},       {"0-2,8", "0 1 2 8 "}, {"3,1", "3 1 "},         {"", ""},
        {"1-", "refused"}, {"-1", "refused"},     {"2-1", "refused"},      {"0-4294967295", "refused"},
        {"x", "refused"},  {"0-8191", "many"},    {"0-8191,0", "refused"},
    };
    for (const auto& c : cases) {
        const auto numbers = ParseCpuList(c.text);
        EXPECT_EQ(!numbers ? "refused" : numbers->size() > 100 ? "many" : Show(*numbers), c.expected) << c.text;
    }
}

TEST(ProcessorReaderTest, ServerHasTwoSocketsAndTheirNodes) {
    const TProcessorFacts facts = ReadMachine("server");
    ASSERT_EQ(facts.packages.size(), 2u);
    const TPackage& second = facts.packages[1];
    EXPECT_EQ(*second.modelName, "AMD EPYC 72F3 8-Core Processor");
    EXPECT_EQ(*second.coreCount, 4u);
    EXPECT_EQ(*second.threadCount, 8u);
    EXPECT_EQ(*second.highestClock, 4105u);
    EXPECT_EQ(*second.bogoMips, 7386.86);
    EXPECT_EQ(facts.cores[7].name + ": " + Show(facts.cores[7].threads), "socket1/core24: 7 15 ");
    EXPECT_EQ(CountCaches(facts), "16 8 8 ");
    ASSERT_EQ(facts.nodes.size(), 2u);
    EXPECT_EQ(*facts.nodes[1].memorySize, 264124700u);
    EXPECT_EQ(facts.nodes[1].packages, std::vector<size_t>{1});
}

TEST(ProcessorReaderTest, LaptopHasCoresOfTwoTypesAndACacheThatFourOfThemShare) {
    const TProcessorFacts facts = ReadMachine("laptop");
    EXPECT_EQ(ShowCores(facts),
              "socket0/core0: 0 1 \nsocket0/core4: 2 3 \nsocket0/core8: 4 \nsocket0/core9: 5 \n"
              "socket0/core10: 6 \nsocket0/core11: 7 \n");
    EXPECT_EQ(*facts.cores[1].type, ECoreType::ePerformance);
    EXPECT_EQ(*facts.cores[2].type, ECoreType::eEfficiency);
    EXPECT_EQ(*facts.packages[0].highestClock, 4400u);
    EXPECT_EQ(CountCaches(facts), "12 3 1 ");
}

TEST(ProcessorReaderTest, ThreadThatIsOfflineBelongsToNoCore) {
    const TProcessorFacts facts = ReadMachine("virtual");
    ASSERT_EQ(facts.threads.size(), 4u);
    EXPECT_FALSE(*facts.threads[3].isOnline);
    EXPECT_FALSE(facts.threads[3].core);
    EXPECT_EQ(*facts.packages[0].threadCount, 3u);
    EXPECT_EQ(facts.packages[0].highestClock.source, "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq");
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
    machine.Write("sys/devices/system/cpu/present", "0-1");
    machine.Write("sys/devices/system/cpu/online", "0-1");
    for (const std::string cpu : {"0", "1"}) {
        machine.Write("sys/devices/system/cpu/cpu" + cpu + "/topology/core_id", "0");
        machine.Write("sys/devices/system/cpu/cpu" + cpu + "/topology/thread_siblings_list", cpu);
    }
    EXPECT_EQ(ShowCores(ReadProcessors(TSystemRoot(machine.Path()))), "socket0/core0: 0 \nsocket0/core0/cpu1: 1 \n");
}

TEST(ProcessorReaderTest, MachineThatTellsNothingHasOneProcessorAndSaysWhy) {
    const TempFolder machine;
    const TProcessorFacts facts = ReadProcessors(TSystemRoot(machine.Path()));
    ASSERT_EQ(facts.packages.size(), 1u);
    EXPECT_EQ(facts.packages[0].modelName.absence, EAbsence::eNotPresent);
    EXPECT_EQ(facts.packages[0].coreCount.source, "/proc/cpuinfo");
}

TEST(ProcessorReaderTest, HostileMachineIsReadWithoutBelievingIt) {
    const TProcessorFacts facts = ReadMachine("hostile");
    EXPECT_EQ(ShowCores(facts), "socket0/core0: 0 1 \n");
    EXPECT_EQ(facts.packages[0].modelName->size(), 65536u);
    EXPECT_EQ(facts.packages[0].bogoMips.absence, EAbsence::eNotSupported);
    EXPECT_EQ(facts.vulnerabilities[0].state.absence, EAbsence::eReadError);
    EXPECT_FALSE(facts.nodes[0].memorySize);
}
