#ifndef KYR_PLUGINS_SOFTWARE_SOFTWAREFACTS_H
#define KYR_PLUGINS_SOFTWARE_SOFTWAREFACTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// A package that dpkg knows, installed or not.
struct TPackage {
    std::string name;
    std::string architecture;
    TFact<std::string> version;
    TFact<std::string> maintainer;
    TFact<std::string> section;
    TFact<std::string> source;
    TFact<std::string> summary;
    TFact<uint64_t> installedSize;  ///< in bytes
    TFact<uint16_t> status;         ///< EPackageStatus
    bool essential = false;
};

enum EPackageStatus : uint16_t {
    eNotInstalled = 1,
    eConfigFiles,
    eHalfInstalled,
    eUnpacked,
    eHalfConfigured,
    eTriggersAwaited,
    eTriggersPending,
    eInstalled,
};

struct TKernelModule {
    std::string name;
    TFact<uint64_t> size;  ///< in bytes
    TFact<uint32_t> referenceCount;
    TFact<uint16_t> state;  ///< EModuleState
    TFact<std::string> version;
    std::vector<std::string> users;
};

enum EModuleState : uint16_t { eLive = 1, eLoading, eUnloading };

/// A service unit of systemd.
struct TService {
    std::string name;
    TFact<std::string> description;
    TFact<uint16_t> startMode;  ///< EStartMode
    TFact<bool> running;
};

enum EStartMode : uint16_t { eEnabled = 1, eDisabled, eStatic, eMasked };

struct TSoftware {
    TFact<std::vector<TPackage>> packages;
    TFact<std::vector<TKernelModule>> modules;
    std::vector<TService> services;
    TListing packageListing;
    TListing serviceListing;
};

TSoftware ReadSoftware(const TSystemRoot& root);

// The parts of it, in order of their names. The texts are the content of /var/lib/dpkg/status and /proc/modules.
std::vector<TPackage> ParsePackages(std::string_view text, const std::string& source);
std::vector<TKernelModule> ParseModules(std::string_view text, const std::string& source);
std::vector<TService> ReadServices(const TSystemRoot& root);
/// Whether the system's services are those that ReadServices finds, or could be found.
TListing ReadServiceListing(const TSystemRoot& root);

#endif
