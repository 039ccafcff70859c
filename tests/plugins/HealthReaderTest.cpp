// Pages made by the tables of the NVMe, ATA and SCSI standards. What a whole disk tells is in expected/disks.txt.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/nvme_ioctl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <map>

#include "DiskCommands.h"
#include "HealthFacts.h"
#include "NvmePages.h"
#include "ScsiPages.h"

using testing::ElementsAre;

namespace {

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) bytes += static_cast<char>(value);
    return bytes;
}

/// A page of zeros but for these bytes, by their offsets.
std::string Page(size_t size, const std::map<size_t, std::string>& parts) {
    std::string page(size, '\0');
    for (const auto& [offset, bytes] : parts) page.replace(offset, bytes.size(), bytes);
    return page;
}

const std::string kGoodStatus = Bytes({0, 0, 0, 0x4f, 0xc2, 0, 0x50});
const std::string kBadStatus = Bytes({0, 0, 0, 0xf4, 0x2c, 0, 0x50});
const std::string kAwake = Bytes({0, 0xff, 0, 0, 0, 0, 0x50});

/// IDENTIFY DEVICE of a disk with SMART switched on, and with logs.
std::string Identity() { return Page(512, {{164, Bytes({1, 0, 0, 0x40})}, {170, Bytes({1, 0, 0, 0, 0x20, 0x40})}}); }

/// An attribute 5 of that value, worst value and raw value; its threshold is 140.
std::string SmartData(int flags, int current, int worst, int raw) {
    return Page(512, {{2, Bytes({5, flags, 0, current, worst, raw})}});
}
const std::string kThresholds = Page(512, {{2, Bytes({5, 140})}});

/// A disk that answers with these pages, and notes what it was asked for.
struct TFakeDisk {
    std::map<EDiskPage, TFact<std::string>> pages;
    std::vector<EDiskPage> asked = {};

    void Have(EDiskPage page, const std::string& bytes) { pages[page] = TFact<std::string>::Of(bytes, "here"); }
    TDiskHealth Read() {
        const TAskDisk ask = [this](const std::string& disk, EDiskPage page) {
            asked.push_back(page);
            const auto found = pages.find(page);
            return found != pages.end() ? found->second
                                        : TFact<std::string>::Missing(EAbsence::eNotSupported, SourceOf(disk, page));
        };
        TDiskPages diskPages("sda", ask);
        TDiskHealth health{};
        ReadAtaHealth(diskPages, health);
        return health;
    }
};

TFakeDisk AwakeDisk() {
    TFakeDisk disk;
    disk.Have(EDiskPage::eAtaPowerMode, kAwake);
    disk.Have(EDiskPage::eAtaIdentify, Identity());
    return disk;
}

}  // namespace

TEST(HealthReaderTest, NvmeCountersOf128BitsAreTakenIfTheyFit) {
    const std::string most(8, '\xff');
    const struct {
        std::map<size_t, std::string> parts;
        std::optional<uint64_t> written, hours;
    } cases[] = {
        {{{48, Bytes({2})}, {128, Bytes({0, 1})}}, 1'024'000, 256},
        {{{48, most}, {128, most}}, std::nullopt, UINT64_MAX},
        {{{56, Bytes({1})}, {143, Bytes({1})}}, std::nullopt, std::nullopt},
    };
    for (const auto& [parts, written, hours] : cases) {
        const std::optional<TNvmeHealth> health = ParseNvmeHealth(Page(512, parts));
        ASSERT_TRUE(health);
        EXPECT_EQ(health->bytesWritten, written);
        EXPECT_EQ(health->powerOnHours, hours);
        EXPECT_EQ(health->temperature, std::nullopt);
    }
    EXPECT_EQ(ParseNvmeHealth(Page(512, {{1, Bytes({0x0c, 0x01})}}))->temperature, -5);
    EXPECT_FALSE(ParseNvmeHealth(std::string(511, '\0')));
    EXPECT_FALSE(ParseNvmeIdentify(std::string(269, '\0')));
    EXPECT_THAT(NvmeWarnings(0x82), ElementsAre("it is too warm or too cold", "warning 7, which is not known"));
    EXPECT_FALSE(IsNvmeFailing(0x02));
    EXPECT_TRUE(IsNvmeFailing(0x06));
}

TEST(HealthReaderTest, AtaDiskIsAssessedByItsStatusAndItsThresholds) {
    const struct {
        std::string status;
        std::string data;
        std::optional<EAssessment> assessment;
        std::optional<EAttributeState> state;
    } cases[] = {
        {kGoodStatus, SmartData(1, 200, 200, 0), EAssessment::ePassed, EAttributeState::eGood},
        {kGoodStatus, SmartData(1, 200, 140, 0), EAssessment::ePassed, EAttributeState::eFailedOnce},
        {kGoodStatus, SmartData(0, 140, 140, 9), EAssessment::eWarning, EAttributeState::eFailingNow},
        {kGoodStatus, SmartData(1, 139, 139, 9), EAssessment::eFailing, EAttributeState::eFailingNow},
        {kBadStatus, SmartData(1, 200, 200, 0), EAssessment::eFailing, EAttributeState::eGood},
        {kBadStatus, "short", EAssessment::eFailing, std::nullopt},
        {Bytes({0, 0, 0, 1, 2, 0, 0x50}), SmartData(1, 200, 200, 0), std::nullopt, EAttributeState::eGood},
        {"", SmartData(1, 1, 1, 0), EAssessment::eFailing, EAttributeState::eFailingNow},
    };
    for (const auto& [status, data, assessment, state] : cases) {
        TFakeDisk disk = AwakeDisk();
        disk.Have(EDiskPage::eAtaSmartStatus, status);
        disk.Have(EDiskPage::eAtaSmartData, data);
        disk.Have(EDiskPage::eAtaSmartThresholds, kThresholds);
        const TDiskHealth health = disk.Read();
        EXPECT_EQ(health.assessment.value, assessment);
        ASSERT_EQ(health.attributes.size(), state ? 1u : 0u);
        if (!state) continue;
        EXPECT_EQ(health.attributes[0].State(), state);
    }
    TSmartAttribute attribute{5, 1, 1, 1, 0, 0};
    EXPECT_EQ(attribute.State(), EAttributeState::eGood) << "a threshold of 0 is never reached";
    attribute.threshold.reset();
    EXPECT_FALSE(attribute.State());
}

TEST(HealthReaderTest, DiskIsAskedForNoMoreThanItHas) {
    using EPage = EDiskPage;
    const std::string directory = Page(512, {{8, Bytes({8})}}), list = Page(512, {{8, Bytes({2, 0, 7})}});
    const auto usual = ElementsAre(EPage::eAtaPowerMode, EPage::eAtaIdentify, EPage::eAtaSmartStatus,
                                   EPage::eAtaSmartData, EPage::eAtaLogDirectory);
    TFakeDisk disk = AwakeDisk();
    disk.Read();
    EXPECT_THAT(disk.asked, usual);

    disk = AwakeDisk();
    disk.Have(EPage::eAtaLogDirectory, directory);
    disk.Have(EPage::eAtaStatisticsList, list);
    disk.Have(EPage::eAtaSolidStateStatistics, Page(512, {{2, Bytes({7})}, {8, Bytes({42, 0, 0, 0, 0, 0, 0, 0xc0})}}));
    EXPECT_EQ(disk.Read().percentageUsed.value, 42);
    EXPECT_EQ(disk.asked.size(), 7u);

    for (const int count : {0x00, 0x01, 0x40, 0x41, 0x80, 0xff}) {
        disk = AwakeDisk();
        disk.Have(EPage::eAtaPowerMode, Bytes({0, count, 0, 0, 0, 0, 0x50}));
        const bool isAsleep = disk.Read().isAsleep.ValueOr(false);
        EXPECT_EQ(isAsleep, count <= 0x40) << count;
        EXPECT_EQ(disk.asked.size() == 1, isAsleep) << count;
        EXPECT_EQ(disk.Read().attributeListing.value.has_value(), !isAsleep) << count;
    }

    // A disk that does not answer is asked once: each question may take until its time is up.
    for (const EAbsence absence : {EAbsence::eNoPermission, EAbsence::eReadError}) {
        disk = AwakeDisk();
        disk.pages[EPage::eAtaPowerMode] = TFact<std::string>::Missing(absence, "here");
        const TDiskHealth health = disk.Read();
        EXPECT_EQ(health.assessment.absence, absence);
        EXPECT_EQ(health.attributeListing.absence, absence) << "nobody knows whether it has attributes";
        EXPECT_EQ(disk.asked.size(), 1u);
    }

    disk = AwakeDisk();
    disk.Have(EPage::eAtaIdentify, Page(512, {{164, Bytes({1, 0, 0, 0x40})}, {174, Bytes({0, 0x40})}}));
    const TDiskHealth health = disk.Read();
    EXPECT_EQ(health.isSmartEnabled.value, false);
    EXPECT_EQ(disk.asked.size(), 2u);
    EXPECT_TRUE(health.attributeListing) << "it has no attributes";
}

TEST(HealthReaderTest, StatisticsCountIfTheyAreValid) {
    const auto page = [](int number, int flags) {
        return Page(512, {{2, Bytes({number})}, {16, Bytes({1, 2, 0, 0, 0, 0, 0, flags})}});
    };
    EXPECT_EQ(StatisticAt(page(1, 0xc0), 1, 16), 513u);
    EXPECT_EQ(StatisticAt(page(1, 0x80), 1, 16), std::nullopt);
    EXPECT_EQ(StatisticAt(page(2, 0xc0), 1, 16), std::nullopt);
    EXPECT_EQ(StatisticAt("", 1, 16), std::nullopt);
    EXPECT_FALSE(HasLog(Page(8, {{6, Bytes({1})}}), 4));
    EXPECT_TRUE(HasStatisticsPage(Page(512, {{8, Bytes({255})}, {511, Bytes({9})}}), 0));
    EXPECT_FALSE(HasStatisticsPage(Page(512, {{8, Bytes({1, 1, 7})}}), 7));
}

TEST(HealthReaderTest, RegistersAreFoundInSenseDataOfBothForms) {
    const std::string descriptor = Bytes({9, 12, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 6, 7}), other = Bytes({0, 2, 0, 0});
    const struct {
        std::string sense;
        int lbaHigh;  // 0: there are no registers
    } cases[] = {
        {Bytes({0x72, 1, 0, 0x1d, 0, 0, 0, 14}) + descriptor, 5},
        {Bytes({0x72, 1, 0, 0x1d, 0, 0, 0, 18}) + other + descriptor, 5},
        {Bytes({0x72, 1, 0, 0x1d, 0, 0, 0, 255}) + descriptor, 5},
        {Bytes({0x72, 1, 0, 0x1d, 0, 0, 0, 13}) + descriptor, 0},
        {Bytes({0x72, 1, 0, 0x1d, 0, 0, 0, 0}) + descriptor, 0},
        {Bytes({0x72, 1}), 0},
        {Bytes({0x70, 0, 1, 1, 7, 6, 2, 10, 0, 3, 4, 5, 0, 0x1d, 0, 0, 0, 0}), 5},
        {Bytes({0x70, 0, 5, 1, 7, 6, 2, 10, 0, 3, 4, 5, 0x20, 0}), 0},
        {"", 0},
    };
    for (const auto& [sense, lbaHigh] : cases) {
        const std::optional<TAtaRegisters> registers = ParseAtaSense(sense);
        ASSERT_EQ(registers.has_value(), lbaHigh != 0);
        if (!registers) continue;
        EXPECT_EQ(registers->lbaHigh, lbaHigh);
        EXPECT_EQ(registers->error, 1);
        EXPECT_EQ(registers->count, 2);
        EXPECT_EQ(registers->device, 6);
        EXPECT_EQ(registers->status, 7);
    }
}

TEST(HealthReaderTest, ScsiParametersStayInTheirPage) {
    const auto log = [](int page, int length, const std::string& parameters) {
        return Bytes({page, 0, 0, length}) + parameters;
    };
    const std::string reference = Bytes({0, 1, 3, 2, 0, 60}), present = Bytes({0, 0, 3, 2, 0, 255});
    EXPECT_EQ(ScsiReferenceTemperature(log(0x0d, 12, present + reference)), 60);
    EXPECT_EQ(ScsiTemperature(log(0x0d, 12, present + reference)), std::nullopt);
    EXPECT_EQ(ScsiReferenceTemperature(log(0x0d, 6, present + reference)), std::nullopt);
    EXPECT_EQ(ScsiReferenceTemperature(log(0x0e, 6, reference)), std::nullopt);
    EXPECT_EQ(ScsiReferenceTemperature(log(0x0d, 255, Bytes({0, 1, 3, 200, 0}))), std::nullopt);
    EXPECT_EQ(ScsiPowerOnHours(log(0x15, 8, Bytes({0, 0, 3, 4, 0, 0, 0, 121}))), 2u);
    EXPECT_EQ(ScsiPercentageUsed(log(0x11, 8, Bytes({0, 1, 3, 4, 0, 0, 0, 7}))), 7);
    const std::pair<int, EScsiException> cases[] = {
        {0x00, EScsiException::eNone}, {0x0b, EScsiException::eWarning}, {0x5d, EScsiException::eFailure}};
    for (const auto& [code, exception] : cases)
        EXPECT_EQ(ParseScsiExceptions(log(0x2f, 7, Bytes({0, 0, 3, 3, code, 0x10, 30}))), exception) << code;
    EXPECT_EQ(ParseScsiExceptions(log(0x2f, 7, Bytes({0, 0, 3, 3, 0x5d, 0xff, 30}))), EScsiException::eNone);
    EXPECT_TRUE(HasScsiLogPage(log(0, 2, Bytes({0, 0x2f})), 0x2f));
    EXPECT_FALSE(HasScsiLogPage(log(0, 1, Bytes({0, 0x2f})), 0x2f));
}

// The first bytes of the command blocks, as the standards have them.
TEST(HealthReaderTest, ScsiCommandsAreThoseOfTheStandards) {
    const std::pair<EDiskPage, std::string> cases[] = {
        {EDiskPage::eAtaPowerMode, Bytes({0x85, 6, 0x20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xe5, 0})},
        {EDiskPage::eAtaIdentify, Bytes({0x85, 8, 0x0e, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0xec, 0})},
        {EDiskPage::eAtaSmartStatus, Bytes({0x85, 6, 0x20, 0, 0xda, 0, 0, 0, 0, 0, 0x4f, 0, 0xc2, 0, 0xb0, 0})},
        {EDiskPage::eAtaSmartData, Bytes({0x85, 8, 0x0e, 0, 0xd0, 0, 1, 0, 0, 0, 0x4f, 0, 0xc2, 0, 0xb0, 0})},
        {EDiskPage::eAtaSmartThresholds, Bytes({0x85, 8, 0x0e, 0, 0xd1, 0, 1, 0, 0, 0, 0x4f, 0, 0xc2, 0, 0xb0, 0})},
        {EDiskPage::eAtaSolidStateStatistics, Bytes({0x85, 9, 0x0e, 0, 0, 0, 1, 0, 4, 0, 7, 0, 0, 0, 0x2f, 0})},
        {EDiskPage::eScsiExceptions, Bytes({0x4d, 0, 0x6f, 0, 0, 0, 0, 0x10, 0, 0})},
    };
    for (const auto& [page, block] : cases) {
        std::string sent;
        const TFact<std::string> bytes = AskDevice(-1, "sda", page, [&](int, unsigned long request, void* command) {
            EXPECT_EQ(request, static_cast<unsigned long>(SG_IO));
            auto& header = *static_cast<sg_io_hdr*>(command);
            sent.assign(reinterpret_cast<const char*>(header.cmdp), header.cmd_len);
            EXPECT_GT(header.timeout, 0u);
            EXPECT_EQ(header.dxfer_direction, header.dxfer_len == 0 ? SG_DXFER_NONE : SG_DXFER_FROM_DEV);
            header.resid = static_cast<int>(header.dxfer_len / 2);
            return 0;
        });
        EXPECT_EQ(sent, block) << SourceOf("sda", page);
        const bool hasData = page != EDiskPage::eAtaPowerMode && page != EDiskPage::eAtaSmartStatus;
        EXPECT_EQ(bytes.ValueOr("").empty(), !hasData) << "registers come with sense data only";
        if (!hasData) continue;
        EXPECT_EQ(bytes->size(), page == EDiskPage::eScsiExceptions ? 2048u : 256u);
    }
}

TEST(HealthReaderTest, FailuresOfCommandsAreToldApart) {
    const std::string registers = Bytes({0x72, 1, 0, 0x1d, 0, 0, 0, 14, 9, 12, 0, 0, 0, 0, 0, 0, 0, 0xf4, 0, 0x2c, 0});
    const struct {
        EDiskPage page;
        int error;  // errno of ioctl
        int status, host;
        std::string sense;
        std::string answer;  // empty: none
        EAbsence absence;
    } cases[] = {
        {EDiskPage::eAtaSmartData, EPERM, 0, 0, "", "", EAbsence::eNoPermission},
        {EDiskPage::eAtaSmartData, EINVAL, 0, 0, "", "", EAbsence::eNotSupported},
        {EDiskPage::eAtaSmartData, 0, 0, 3, "", "", EAbsence::eReadError},  // the time is up
        {EDiskPage::eAtaSmartData, 0, 2, 0, Bytes({0x72, 5, 0x20, 0, 0, 0, 0, 0}), "", EAbsence::eNotSupported},
        {EDiskPage::eAtaSmartData, 0, 2, 0, Bytes({0x70, 0, 0x0b, 0, 0}), "", EAbsence::eNotSupported},
        {EDiskPage::eScsiExceptions, 0, 2, 0, Bytes({0x70, 0, 3, 0, 0}), "", EAbsence::eReadError},
        {EDiskPage::eScsiExceptions, 0, 8, 0, "", "", EAbsence::eReadError},
        {EDiskPage::eAtaSmartStatus, 0, 2, 0, registers + Bytes({0x50}), kBadStatus, EAbsence::eNotPresent},
        {EDiskPage::eAtaSmartStatus, 0, 2, 0, registers + Bytes({0x51}), "", EAbsence::eReadError},
    };
    for (const auto& each : cases) {
        const TFact<std::string> bytes = AskDevice(-1, "sda", each.page, [&](int, unsigned long, void* command) {
            auto& header = *static_cast<sg_io_hdr*>(command);
            header.status = static_cast<unsigned char>(each.status);
            header.host_status = static_cast<unsigned short>(each.host);
            std::copy(each.sense.begin(), each.sense.end(), header.sbp);
            header.sb_len_wr = static_cast<unsigned char>(each.sense.size());
            errno = each.error;
            return each.error == 0 ? 0 : -1;
        });
        EXPECT_EQ(bytes.ValueOr(""), each.answer);
        EXPECT_EQ(bytes.absence, each.absence);
    }
}

TEST(HealthReaderTest, NvmeCommandsAreThoseOfTheStandard) {
    const auto ask = [](EDiskPage page, int result) {
        nvme_passthru_cmd sent = {};
        const TFact<std::string> bytes = AskDevice(-1, "nvme0n1", page, [&](int, unsigned long request, void* command) {
            EXPECT_EQ(request, static_cast<unsigned long>(NVME_IOCTL_ADMIN_CMD));
            sent = *static_cast<nvme_passthru_cmd*>(command);
            errno = EACCES;
            return result;
        });
        return std::pair(sent, bytes);
    };
    const auto [health, bytes] = ask(EDiskPage::eNvmeHealth, 0);
    EXPECT_EQ(health.opcode, 2);
    EXPECT_EQ(health.nsid, 0xffffffff);
    EXPECT_EQ(health.cdw10, 0x007f0002u);
    EXPECT_EQ(health.data_len, 512u);
    EXPECT_GT(health.timeout_ms, 0u);
    EXPECT_EQ(bytes->size(), 512u);
    EXPECT_EQ(ask(EDiskPage::eNvmeIdentify, 0).first.cdw10, 1u);
    EXPECT_EQ(ask(EDiskPage::eNvmeHealth, -1).second.absence, EAbsence::eNoPermission);
    EXPECT_EQ(ask(EDiskPage::eNvmeHealth, 0x4109).second.absence, EAbsence::eNotSupported);
    EXPECT_EQ(ask(EDiskPage::eNvmeHealth, 0x6).second.absence, EAbsence::eReadError);
}

// No device is opened, whatever stands in /dev under a name that sysfs tells.
TEST(HealthReaderTest, OnlyBlockDevicesAreOpened) {
    EXPECT_EQ(AskDisk("null", EDiskPage::eNvmeHealth).absence, EAbsence::eNotPresent);
    EXPECT_EQ(AskDisk("no-such-disk", EDiskPage::eNvmeHealth).absence, EAbsence::eNotPresent);
}
