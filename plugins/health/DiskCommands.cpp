#include "DiskCommands.h"

#include <fcntl.h>
#include <linux/nvme_ioctl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>

#include "AtaPages.h"

namespace {

constexpr unsigned kTimeout = 5000;  // in milliseconds

using TBytes = TFact<std::string>;

struct TNvmeCommand {
    EDiskPage page;
    uint8_t operation;
    uint32_t space;  // of names; all of them, or none
    uint32_t argument;
    size_t length;
};

constexpr TNvmeCommand kNvmeCommands[] = {
    {EDiskPage::eNvmeHealth, 0x02, 0xffffffff, (512 / 4 - 1) << 16 | 0x02, 512},
    {EDiskPage::eNvmeIdentify, 0x06, 0, 1, 4096},
};

// What a disk of the other kinds is asked: ATA commands, which the SCSI layer passes through, with the values of their
// registers, and the numbers of SCSI log pages. An ATA command without data returns registers.
struct TAtaCommand {
    EDiskPage page;
    uint8_t command;
    uint8_t feature;
    uint8_t log;
    uint8_t logPage;
    bool hasData;
};

constexpr uint8_t kReadLog = 0x2f, kSmart = 0xb0;

constexpr TAtaCommand kAtaCommands[] = {
    {EDiskPage::eAtaPowerMode, 0xe5, 0, 0, 0, false},
    {EDiskPage::eAtaIdentify, 0xec, 0, 0, 0, true},
    {EDiskPage::eAtaSmartStatus, kSmart, 0xda, 0, 0, false},
    {EDiskPage::eAtaSmartData, kSmart, 0xd0, 0, 0, true},
    {EDiskPage::eAtaSmartThresholds, kSmart, 0xd1, 0, 0, true},
    {EDiskPage::eAtaLogDirectory, kReadLog, 0, 0x00, 0, true},
    {EDiskPage::eAtaStatisticsList, kReadLog, 0, 0x04, 0, true},
    {EDiskPage::eAtaGeneralStatistics, kReadLog, 0, 0x04, 1, true},
    {EDiskPage::eAtaSolidStateStatistics, kReadLog, 0, 0x04, 7, true},
};

struct TScsiLogPage {
    EDiskPage page;
    uint8_t number;
};

constexpr TScsiLogPage kScsiLogPages[] = {
    {EDiskPage::eScsiLogPages, 0x00},       {EDiskPage::eScsiTemperature, 0x0d}, {EDiskPage::eScsiSolidState, 0x11},
    {EDiskPage::eScsiBackgroundScan, 0x15}, {EDiskPage::eScsiExceptions, 0x2f},
};

// Null if the table has none for the page.
template <typename TCommand, size_t kCount>
const TCommand* FindCommand(const TCommand (&table)[kCount], EDiskPage page) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [page](const TCommand& command) { return command.page == page; });
    return found == std::end(table) ? nullptr : found;
}

// What the controller returns in place of data: the operation, the field or the log page is not known to it.
bool IsUnknownToNvme(int status) {
    const int code = status & 0x7ff;
    return code == 0x001 || code == 0x002 || code == 0x109;
}

TBytes AskNvme(int device, const TNvmeCommand& question, const std::string& source, const TSendCommand& send) {
    std::string bytes(question.length, '\0');
    nvme_passthru_cmd command = {};
    command.opcode = question.operation;
    command.nsid = question.space;
    command.addr = reinterpret_cast<uintptr_t>(bytes.data());
    command.data_len = static_cast<uint32_t>(bytes.size());
    command.cdw10 = question.argument;
    command.timeout_ms = kTimeout;
    const int status = send(device, NVME_IOCTL_ADMIN_CMD, &command);
    if (status < 0) return TBytes::Missing(AbsenceOf(errno), source);
    if (status > 0)
        return TBytes::Missing(IsUnknownToNvme(status) ? EAbsence::eNotSupported : EAbsence::eReadError, source);
    return TBytes::Of(std::move(bytes), source);
}

using TCommandBlock = std::array<uint8_t, 16>;

// ATA PASS-THROUGH (16). SMART commands have a signature in the middle and high bytes of their address.
TCommandBlock AtaBlock(const TAtaCommand& ata) {
    constexpr uint8_t kPassThrough = 0x85, kWithoutData = 3 << 1, kReading = 4 << 1, kExtended = 1;
    constexpr uint8_t kReturnRegisters = 0x20, kReadBlocks = 0x0e;
    const bool isSmart = ata.command == kSmart;
    TCommandBlock block = {};
    block[0] = kPassThrough;
    block[1] = (ata.hasData ? kReading : kWithoutData) | (ata.command == kReadLog ? kExtended : 0);
    block[2] = ata.hasData ? kReadBlocks : kReturnRegisters;
    block[4] = ata.feature;
    block[6] = ata.hasData ? 1 : 0;
    block[8] = ata.log;
    block[10] = isSmart ? 0x4f : ata.logPage;
    block[12] = isSmart ? 0xc2 : 0;
    block[14] = ata.command;
    return block;
}

// LOG SENSE for present values.
TCommandBlock LogSenseBlock(uint8_t page, size_t length) {
    TCommandBlock block = {};
    block[0] = 0x4d;
    block[2] = static_cast<uint8_t>(0x40 | page);
    block[7] = static_cast<uint8_t>(length >> 8);
    block[8] = static_cast<uint8_t>(length);
    return block;
}

/// What came back of a SCSI command.
struct TAnswer {
    int error;  ///< an errno; 0: the command was sent
    bool isGood;
    std::string bytes;
    std::string sense;
};

TAnswer SendScsi(int device, TCommandBlock block, uint8_t blockLength, size_t length, const TSendCommand& send) {
    std::string bytes(length, '\0'), sense(64, '\0');
    sg_io_hdr request = {};
    request.interface_id = 'S';
    request.dxfer_direction = length == 0 ? SG_DXFER_NONE : SG_DXFER_FROM_DEV;
    request.cmd_len = blockLength;
    request.cmdp = block.data();
    request.dxfer_len = static_cast<unsigned>(length);
    request.dxferp = bytes.data();
    request.mx_sb_len = static_cast<unsigned char>(sense.size());
    request.sbp = reinterpret_cast<unsigned char*>(sense.data());
    request.timeout = kTimeout;
    if (send(device, SG_IO, &request) < 0) return {errno, false, "", ""};
    bytes.resize(length - std::min<size_t>(length, static_cast<size_t>(std::max(request.resid, 0))));
    sense.resize(std::min<size_t>(sense.size(), request.sb_len_wr));
    if (request.host_status != 0) return {EIO, false, "", ""};
    return {0, request.status == 0, std::move(bytes), std::move(sense)};
}

// ILLEGAL REQUEST, or ABORTED COMMAND, as which ATA commands come back that the disk does not know.
EAbsence WhyNone(const TAnswer& answer) {
    if (answer.error != 0) return AbsenceOf(answer.error);
    if (answer.sense.size() < 3) return EAbsence::eReadError;
    const bool isFixed = (answer.sense[0] & 0x7f) < 0x72;
    const int key = answer.sense[isFixed ? 2 : 1] & 0x0f;
    return key == 0x05 || key == 0x0b ? EAbsence::eNotSupported : EAbsence::eReadError;
}

// A command that returns registers ends with sense data in any case.
TBytes AskAta(int device, const TAtaCommand& ata, const std::string& source, const TSendCommand& send) {
    TAnswer answer = SendScsi(device, AtaBlock(ata), 16, ata.hasData ? 512 : 0, send);
    if (ata.hasData && answer.isGood) return TBytes::Of(std::move(answer.bytes), source);
    const std::optional<TAtaRegisters> registers = ParseAtaSense(answer.sense);
    constexpr uint8_t kFailed = 0x01, kFaulty = 0x20;  // of the status register
    if (!ata.hasData && registers && (registers->status & (kFailed | kFaulty)) == 0) {
        const uint8_t bytes[] = {registers->error,   registers->count,  registers->lbaLow, registers->lbaMid,
                                 registers->lbaHigh, registers->device, registers->status};
        return TBytes::Of(std::string(std::begin(bytes), std::end(bytes)), source);
    }
    return TBytes::Missing(answer.isGood ? EAbsence::eNotSupported : WhyNone(answer), source);
}

TBytes AskScsi(int device, uint8_t page, const std::string& source, const TSendCommand& send) {
    constexpr size_t kLength = 4096;
    TAnswer answer = SendScsi(device, LogSenseBlock(page, kLength), 10, kLength, send);
    if (!answer.isGood) return TBytes::Missing(WhyNone(answer), source);
    return TBytes::Of(std::move(answer.bytes), source);
}

// Only a block device: whatever else has its name in /dev must not be opened.
int OpenDisk(const std::string& disk) {
    const std::string path = "/dev/" + disk;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return -1;
    if (!S_ISBLK(status.st_mode)) {
        errno = ENODEV;
        return -1;
    }
    return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

}  // namespace

TFact<std::string> AskDisk(const std::string& disk, EDiskPage page) {
    const TDescriptor device(OpenDisk(disk));
    if (device.Number() < 0) return TBytes::Missing(AbsenceOf(errno), SourceOf(disk, page));
    return AskDevice(device.Number(), disk, page,
                     [](int number, unsigned long request, void* command) { return ioctl(number, request, command); });
}

TFact<std::string> AskDevice(int device, const std::string& disk, EDiskPage page, const TSendCommand& send) {
    const std::string source = SourceOf(disk, page);
    if (const TNvmeCommand* const nvme = FindCommand(kNvmeCommands, page)) return AskNvme(device, *nvme, source, send);
    if (const TAtaCommand* const ata = FindCommand(kAtaCommands, page)) return AskAta(device, *ata, source, send);
    return AskScsi(device, FindCommand(kScsiLogPages, page)->number, source, send);
}
