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

TEST(ProcessorReaderTest, MachineThatTellsNothingHasOneProcessorAndSaysWhy) {
    const TempFolder machine;
    const TProcessorFacts facts = ReadProcessors(TSystemRoot(machine.Path()));
    ASSERT_EQ(facts.packages.size(), 1u);
    EXPECT_EQ(facts.packages[0].modelName.absence, EAbsence::eNotPresent);
    EXPECT_EQ(facts.packages[0].coreCount.source, "/proc/cpuinfo");
}
