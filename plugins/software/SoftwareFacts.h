#ifndef KYR_PLUGINS_SOFTWARE_SOFTWAREFACTS_H
#define KYR_PLUGINS_SOFTWARE_SOFTWAREFACTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// A package of the system, installed or not.
struct TPackage {
    std::string name;
    std::string id;       ///< what sets it apart from others of its name: the architecture, see MakeUnique
    uint16_t format = 0;  ///< EPackageFormat
    TFact<std::string> version;
    TFact<std::string> maintainer;
    TFact<std::string> section;
    TFact<std::string> source;
    TFact<std::string> summary;
    TFact<uint64_t> installedSize;  ///< in bytes
    TFact<int64_t> installDate;     ///< in seconds since 1970
    TFact<uint16_t> status;         ///< EPackageStatus
    TFact<bool> essential;
    bool isHeld = false;  ///< not to be updated
};

enum EPackageFormat : uint16_t { eDeb = 1, eRpm, eApk, ePacman, eFlatpak, eSnap };

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

/// A package of a programming language's own package manager.
struct TLanguagePackage {
    std::string name;
    std::string folder;   ///< where it is installed
    uint16_t format = 0;  ///< ELanguageFormat
    TFact<std::string> version;
    TFact<std::string> author;
    TFact<std::string> summary;
};

enum ELanguageFormat : uint16_t { ePython = 1, eNpm };

/// Where a package manager takes packages from.
struct TRepository {
    std::string name;
    std::string file;     ///< that configures it
    uint16_t format = 0;  ///< EPackageFormat
    std::string title;
    std::vector<std::string> urls;
    std::string distribution;
    std::vector<std::string> components;
    std::string signedBy;
    bool isEnabled = true;
    bool hasSources = false;
    std::optional<bool> checksSignatures;
};

/// An installed package of which the package lists have a newer version.
struct TPendingUpdate {
    std::string name;
    std::string architecture;
    std::string installed;
    std::string candidate;
    std::string archive;  ///< the suite that has it
    std::string source;   ///< the list
    bool isSecurity = false;
    bool isHeld = false;
};

struct TPendingUpdates {
    std::vector<TPendingUpdate> updates;
    TListing listing;
};

/// What can be told of updates without a look into the long lists of packages.
struct TUpdateState {
    TFact<int64_t> listDate;  ///< of the newest list, in seconds since 1970
    TFact<bool> rebootRequired;
    TFact<std::vector<std::string>> rebootPackages;
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

/// What was found, and why there may be more.
template <typename T>
struct TFound {
    std::vector<T> items;
    std::vector<TListing> missing;

    /// Notes a source that is there and cannot be read. A few are enough to tell.
    void NoteUnreadable(const TListing& source) {
        if (IsUnreadable(source) && missing.size() < 10) missing.push_back(source);
    }
};

struct TSoftware {
    TFound<TPackage> packages;
    TFound<TLanguagePackage> languagePackages;
    TFound<TRepository> repositories;
    mutable std::optional<TPendingUpdates> updates;  ///< read when they are asked for, since the lists are long
    std::optional<TUpdateState> updateState;         ///< of apt, where it manages packages
    TFact<std::vector<TKernelModule>> modules;
    std::vector<TService> services;
    TListing serviceListing;
};

TSoftware ReadSoftware(const TSystemRoot& root);

// The parts of it, in order of their names. The text is the content of /proc/modules.
std::vector<TKernelModule> ParseModules(std::string_view text, const std::string& source);
std::vector<TService> ReadServices(const TSystemRoot& root);
/// Whether the system's services are those that ReadServices finds, or could be found.
TListing ReadServiceListing(const TSystemRoot& root);
TFound<TPackage> ReadPackages(const TSystemRoot& root);
TFound<TLanguagePackage> ReadLanguagePackages(const TSystemRoot& root);
TFound<TRepository> ReadRepositories(const TSystemRoot& root);
TPendingUpdates ReadPendingUpdates(const TSystemRoot& root, const std::vector<TPackage>& packages);
/// Nothing where no package was installed by dpkg.
std::optional<TUpdateState> ReadUpdateState(const TSystemRoot& root, const std::vector<TPackage>& packages);

#endif
