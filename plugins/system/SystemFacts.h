#ifndef KYR_PLUGINS_SYSTEM_SYSTEMFACTS_H
#define KYR_PLUGINS_SYSTEM_SYSTEMFACTS_H

#include "SystemRoot.h"

/// Values of MOLTA_OperatingSystem.BootFirmware.
constexpr uint16_t kBootFirmwareBios = 1;
constexpr uint16_t kBootFirmwareUefi = 2;

/// The computer, its firmware and its operating system. Texts are as read, in any encoding.
struct TSystemFacts {
    // The computer; from DMI, except for the host name.
    TFact<std::string> hostName;
    TFact<std::string> manufacturer;
    TFact<std::string> productName;
    TFact<std::string> productVersion;
    TFact<std::string> productFamily;
    TFact<std::string> skuNumber;
    TFact<std::string> serialNumber;
    TFact<std::string> uuid;
    TFact<std::string> assetTag;
    TFact<uint16_t> chassisType;  ///< as in SMBIOS

    TFact<std::string> hypervisor;  ///< of which the computer is a guest
    TFact<std::string> container;   ///< in which the collection ran
    TFact<std::string> machineId;   ///< derived from that of the machine

    // Its main board, from DMI.
    TFact<std::string> boardVendor;
    TFact<std::string> boardName;
    TFact<std::string> boardVersion;
    TFact<std::string> boardSerialNumber;
    TFact<std::string> boardAssetTag;

    // Its firmware, from DMI.
    TFact<std::string> biosVendor;
    TFact<std::string> biosVersion;
    TFact<std::string> biosRelease;
    TFact<std::string> machineTypeModel;  ///< seven characters
    TFact<int64_t> biosDate;              ///< seconds since 1970

    // The operating system.
    TFact<std::string> osName;
    TFact<std::string> osPrettyName;
    TFact<std::string> osVersion;
    TFact<std::string> osId;
    TFact<std::string> pointRelease;  ///< of Debian
    TFact<uint16_t> bootFirmware;     ///< that started it
    TFact<std::string> kernelRelease;
    TFact<std::string> kernelVersion;
    TFact<std::string> architecture;
    TFact<int64_t> bootTime;  ///< seconds since 1970
    TFact<uint64_t> upTime;   ///< in seconds
    bool isRunning = false;   ///< the running machine, not a recorded one

    TListing dmiListing;
    TListing osReleaseListing;
    TListing kernelListing;
};

TSystemFacts ReadSystem(const TSystemRoot& root);

// The parts of it.
void ReadDmi(const TSystemRoot& root, TSystemFacts& facts);
/// After ReadDmi: the firmware of many guests names their hypervisor.
void ReadHypervisor(const TSystemRoot& root, TSystemFacts& facts);
void ReadContainer(const TSystemRoot& root, TSystemFacts& facts);
void ReadMachineId(const TSystemRoot& root, TSystemFacts& facts);
void ReadBootFirmware(const TSystemRoot& root, TSystemFacts& facts);
void ReadOsRelease(const TSystemRoot& root, TSystemFacts& facts);
void ReadKernel(const TSystemRoot& root, TSystemFacts& facts);

#endif
