#ifndef KYR_PLUGINS_SYSTEM_SYSTEMFACTS_H
#define KYR_PLUGINS_SYSTEM_SYSTEMFACTS_H

#include "SystemRoot.h"

/// Values of MOLTA_OperatingSystem.BootFirmware.
constexpr uint16_t kBootFirmwareBios = 1;
constexpr uint16_t kBootFirmwareUefi = 2;

/// Values of MOLTA_SystemSecurity.SecureBoot.
constexpr uint16_t kSecureBootEnabled = 1;
constexpr uint16_t kSecureBootDisabled = 2;
constexpr uint16_t kSecureBootSetupMode = 3;
constexpr uint16_t kSecureBootNotSupported = 4;

/// Values of MOLTA_SystemSecurity.SELinuxMode.
constexpr uint16_t kSELinuxEnforcing = 1;
constexpr uint16_t kSELinuxPermissive = 2;
constexpr uint16_t kSELinuxDisabled = 3;

/// What the container may use of the machine. A limit that is not set has neither value nor source.
struct TContainerLimits {
    TFact<uint64_t> memory;           ///< in bytes
    TFact<double> processors;         ///< the time of so many
    TFact<std::string> processorSet;  ///< as "0-3,8"
    TFact<uint64_t> processes;
};

/// How the kernel protects itself and separates programs.
struct TSecurityFacts {
    TFact<uint16_t> secureBoot;
    TFact<uint16_t> lockdown;  ///< as in MOLTA_SystemSecurity.Lockdown
    TFact<std::vector<std::string>> modules;
    TFact<uint16_t> selinuxMode;
    TFact<uint16_t> selinuxConfiguredMode;
    TFact<std::string> selinuxPolicy;
    TFact<bool> isAppArmorEnabled;
    TFact<uint32_t> appArmorProfiles;
    TFact<uint32_t> appArmorEnforced;
    TFact<bool> isFips;
    TFact<std::vector<uint16_t>> taint;  ///< the bits that are set

    TListing listing;
};

/// A Trusted Platform Module.
struct TTpm {
    std::string name;  ///< such as "tpm0"
    TFact<std::string> version;
    TFact<std::string> driver;
};

/// The computer, its firmware and its operating system. Texts are as read, in any encoding.
struct TSystemFacts {
    // The computer; from DMI, or what a board without it has instead, except for the host name.
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
    TFact<std::vector<std::string>> firmwareIds;

    TFact<std::string> hypervisor;  ///< of which the computer is a guest
    TFact<std::string> container;   ///< in which the collection ran
    TContainerLimits limits;
    TFact<std::string> machineId;  ///< derived from that of the machine

    // What its administrator says of it.
    TFact<std::string> staticHostName;
    TFact<std::string> fullHostName;
    TFact<std::string> prettyHostName;
    TFact<std::string> deployment;
    TFact<std::string> location;

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
    TFact<std::string> pointRelease;
    TFact<std::string> codename;
    TFact<std::string> variant;
    TFact<std::string> variantId;
    TFact<int64_t> installDate;  ///< seconds since 1970
    TFact<std::string> timeZone;
    TFact<int16_t> currentTimeZone;  ///< minutes east of UTC
    TFact<std::string> locale;
    TFact<std::string> initSystem;
    TFact<std::string> defaultTarget;
    TFact<std::string> kernelCommandLine;  ///< without secrets
    TFact<uint16_t> bootFirmware;          ///< that started it
    TFact<std::string> kernelRelease;
    TFact<std::string> kernelVersion;
    TFact<std::string> architecture;
    TFact<int64_t> bootTime;  ///< seconds since 1970
    TFact<uint64_t> upTime;   ///< in seconds
    bool isRunning = false;   ///< the running machine, not a recorded one

    TSecurityFacts security;
    std::vector<TTpm> tpms;

    TListing dmiListing;
    TListing tpmListing;
    TListing osReleaseListing;
    TListing kernelListing;
};

TSystemFacts ReadSystem(const TSystemRoot& root);

// The parts of it.
void ReadDmi(const TSystemRoot& root, TSystemFacts& facts);
/// The identifiers by which firmware catalogues name computers.
void ReadComputerIds(const TSystemRoot& root, TSystemFacts& facts);
/// After ReadDmi: the firmware of many guests names their hypervisor.
void ReadHypervisor(const TSystemRoot& root, TSystemFacts& facts);
/// After ReadDmi: what describes boards without DMI. It tells who made the computer, model and serial number.
void ReadDeviceTree(const TSystemRoot& root, TSystemFacts& facts);
/// The same of mainframes. After ReadHypervisor.
void ReadSysinfo(const TSystemRoot& root, TSystemFacts& facts);
void ReadContainer(const TSystemRoot& root, TSystemFacts& facts);
/// After ReadContainer: only a container has limits of its own.
void ReadContainerLimits(const TSystemRoot& root, TSystemFacts& facts);
/// After ReadKernel and ReadDmi: the full host name begins with the host name, and the firmware knows the chassis.
void ReadHostNames(const TSystemRoot& root, TSystemFacts& facts);
void ReadMachineId(const TSystemRoot& root, TSystemFacts& facts);
void ReadBootFirmware(const TSystemRoot& root, TSystemFacts& facts);
void ReadOsRelease(const TSystemRoot& root, TSystemFacts& facts);
/// What the content of os-release and the files beside it tell of the release.
void ReadRelease(const TSystemRoot& root, const TFact<std::string>& osRelease, TSystemFacts& facts);
void ReadInstallation(const TSystemRoot& root, TSystemFacts& facts);
void ReadKernelCommandLine(const TSystemRoot& root, TSystemFacts& facts);
void ReadKernel(const TSystemRoot& root, TSystemFacts& facts);
/// After ReadBootFirmware.
void ReadSecurity(const TSystemRoot& root, TSystemFacts& facts);
void ReadTpms(const TSystemRoot& root, TSystemFacts& facts);

#endif
