#include "DomainXml.h"
#include "GuestFacts.h"
#include "support/TestSupport.h"

namespace {

const std::string kDocker = "var/lib/docker/containers/";

std::string Show(const TFact<bool>& flag) {
    return !flag ? AbsenceText(flag.absence) + (": " + flag.source) : *flag ? "yes" : "no";
}

TGuestFacts ReadFiles(const std::vector<std::pair<std::string, std::string>>& files) {
    const TempFolder machine;
    for (const auto& [path, content] : files) machine.Write(path, content);
    return ReadGuests(TSystemRoot(machine.Path()));
}

/// The file of a container of Docker.
std::pair<std::string, std::string> Container(const std::string& id, const std::string& members) {
    return {kDocker + id + "/config.v2.json", "{\"ID\":\"" + id + "\"," + members + "}"};
}

}  // namespace

TEST(GuestsReaderTest, DocumentOfAVirtualMachineIsRead) {
    const std::optional<TDomain> domain = ParseDomain(
        "<domstatus pid='12'><domain type='kvm'><metadata><name>x</name></metadata><name>a&amp;b</name>"
        "<memory unit='MiB'>2</memory><os><type arch='s390x'>hvm</type></os></domain></domstatus>");
    ASSERT_TRUE(domain);
    EXPECT_EQ(domain->name, "a&b");
    EXPECT_EQ(domain->process, "12");
    EXPECT_EQ(domain->architecture, "s390x");
    EXPECT_EQ(MemoryOf(*domain), uint64_t{2} << 20);
    for (const char* document : {"", "x", "<domain>", "<domain/>", "<domain><title>x</title></domain>",
                                 "<name>x</name>", "<!DOCTYPE d><domain><name>x</name></domain>",
                                 "<domain><name>../x</name></domain>", "<domain><name>x</name></domain><a/>"})
        EXPECT_FALSE(ParseDomain(document)) << document;
}

TEST(GuestsReaderTest, MemoryIsCountedByItsUnit) {
    const std::tuple<const char*, const char*, std::optional<uint64_t>> cases[] = {
        {"8", "", 8192},
        {"8", "KB", 8000},
        {"8", "b", 8},
        {"1", "TiB", uint64_t{1} << 40},
        {"8", "EiB", std::nullopt},
        {"18446744073709551615", "KiB", std::nullopt},
        {"-1", "b", std::nullopt},
        {"", "b", std::nullopt},
    };
    for (const auto& [memory, unit, bytes] : cases) {
        TDomain domain;
        domain.memory = memory;
        domain.memoryUnit = unit;
        EXPECT_EQ(MemoryOf(domain), bytes) << memory << unit;
    }
}

TEST(GuestsReaderTest, ContainerRunsIfItsProcessIsInItsGroup) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"0", "0::/system.slice/docker-a1.scope\n", "no"},
        {"7", "0::/system.slice/docker-a1.scope\n", "yes"},
        {"7", "4:memory:/docker/a1\n", "yes"},
        {"7", "0::/user.slice\n", "no"},
        {"8", "0::/system.slice/docker-a1.scope\n", "no"},
    };
    for (const auto& [process, groups, runs] : cases) {
        const std::string state = std::string(R"("Name":"/web","State":{"Running":true,"Pid":)") + process + "}";
        const TGuestFacts facts = ReadFiles({Container("a1", state), {"proc/7/cgroup", groups}});
        ASSERT_EQ(facts.containers[0].guests.size(), 1u);
        EXPECT_EQ(Show(facts.containers[0].guests[0].isRunning), runs) << process << groups;
    }
}

TEST(GuestsReaderTest, NamesAreUniqueAndTimesHaveOffsets) {
    const TGuestFacts facts = ReadFiles({Container("a1", R"("Name":"/web","Created":"2024-01-01T01:00:00.5+01:00")"),
                                         Container("b2", R"("Name":"/web","Created":"2024-01-01T00:00:00")"),
                                         Container("c3", R"("Name":"/web","Created":"2023-12-31T18:30:00-05:30")")});
    const std::vector<THostedContainer>& guests = facts.containers[0].guests;
    ASSERT_EQ(guests.size(), 3u);
    EXPECT_EQ(guests[0].name, "web");
    EXPECT_EQ(guests[1].name, "web (b2)");
    EXPECT_EQ(guests[0].created.value, 1704067200);
    EXPECT_FALSE(guests[1].created);
    EXPECT_EQ(guests[2].created.value, 1704067200);
}

TEST(GuestsReaderTest, LimitOfAContainerIsCountedAsTheKernelDoes) {
    const std::pair<std::string, std::optional<uint64_t>> cases[] = {
        {"lxc.cgroup2.memory.max = 512m\n", uint64_t{512} << 20},
        {"lxc.cgroup.memory.limit_in_bytes = 2G\n", uint64_t{2} << 30},
        {"lxc.cgroup2.memory.max = 4096\n", 4096},
        {"lxc.cgroup2.memory.max = 1GB\n", std::nullopt},
        {"lxc.cgroup2.memory.max = M\n", std::nullopt},
    };
    for (const auto& [settings, bytes] : cases) {
        const TGuestFacts facts = ReadFiles({{"var/lib/lxc/a/config", settings}});
        ASSERT_EQ(facts.containers[3].guests.size(), 1u);
        EXPECT_EQ(facts.containers[3].guests[0].memory.value, bytes) << settings;
    }
}

// With hidepid only those of the user can be seen, and never the first one.
TEST(GuestsReaderTest, NobodyKnowsWhatRunsIfProcessesAreHidden) {
    const std::pair<std::string, std::string> state{"run/systemd/machines/a", "SERVICE=systemd-nspawn\nLEADER=12\n"};
    EXPECT_EQ(ReadFiles({state}).containers[5].guests.at(0).isRunning.absence, EAbsence::eNotPresent);
    EXPECT_FALSE(ReadFiles({state}).containers[5].guests.at(0).isRunning);
    EXPECT_EQ(ReadFiles({state, {"proc/1/stat", ""}}).containers[5].guests.at(0).isRunning.value, false);
    EXPECT_EQ(ReadFiles({state, {"proc/12/stat", ""}}).containers[5].guests.at(0).isRunning.value, true);
}

TEST(GuestsReaderTest, FileThatIsNotUnderstoodIsMissed) {
    const std::pair<std::string, std::string> files[] = {
        {kDocker + "a/config.v2.json", "{"},
        {kDocker + "a/config.v2.json", std::string(500000, '[')},
        {kDocker + "a/config.v2.json", R"({"ID":1,"Name":"x"})"},
        {"var/lib/containers/storage/overlay-containers/containers.json", "{}"},
        {"run/containerd/io.containerd.runtime.v2.task/k8s.io/a/config.json", "[]"},
    };
    for (const auto& [path, content] : files) {
        const TGuestFacts facts = ReadFiles({{path, content}});
        size_t missed = 0;
        for (const TEngineContainers& engine : facts.containers) {
            EXPECT_TRUE(engine.guests.empty());
            if (!engine.listing) missed += engine.listing.source == '/' + path ? 1 : 100;
        }
        EXPECT_EQ(missed, 1u) << path;
    }
}

TEST(GuestsReaderTest, ContainersOfOtherEnginesAreMissed) {
    const TGuestFacts facts = ReadFiles({{"var/lib/incus/containers/web/metadata.yaml", ""}});
    EXPECT_FALSE(facts.containers.back().listing);
    EXPECT_EQ(facts.containers.back().listing.source, "/var/lib/incus/containers");
    EXPECT_TRUE(ReadFiles({{"var/lib/incus/containers.txt", ""}}).containers.back().listing);
}
