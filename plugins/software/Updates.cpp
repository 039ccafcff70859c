#include <algorithm>
#include <unordered_map>

#include "AptLists.h"
#include "DebianVersion.h"
#include "SoftwareFacts.h"

namespace {

constexpr const char* kRebootRequired = "/run/reboot-required";
constexpr const char* kRebootPackages = "/run/reboot-required.pkgs";
/// One of these writes the files above.
constexpr const char* kNotifiers[] = {"/usr/share/update-notifier/notify-reboot-required",
                                      "/etc/kernel/postinst.d/unattended-upgrades"};

/// What is missing of other managers, in the order of EPackageFormat.
constexpr const char* kOtherLists[] = {"package lists of rpm", "package lists of apk", "package lists of pacman"};

/// The newest version of a package in some of the lists.
struct TNewest {
    std::string version;
    const TAptList* list = nullptr;

    void Offer(std::string_view candidate, const TAptList& from) {
        if (list != nullptr && !IsOlderVersion(version, candidate)) return;
        version = candidate;
        list = &from;
    }
};

/// An installed package, and what the lists have in its place.
struct TInstalled {
    const TPackage* package;
    TNewest automatic;
    TNewest onRequest;
    bool isListed = false;  ///< whether a list has the installed version
    bool isSecurity = false;

    // As apt chooses without settings of the administrator: from backports only what is newer than what was taken from
    // there.
    const TNewest* Candidate() const {
        const std::string& version = *package->version;
        if (automatic.list != nullptr && IsOlderVersion(version, automatic.version)) return &automatic;
        const bool hasRequest = onRequest.list != nullptr && !isListed && IsOlderVersion(version, onRequest.version);
        return hasRequest ? &onRequest : nullptr;
    }
};

class TUpdateFinder {
public:
    explicit TUpdateFinder(const std::vector<TPackage>& packages) {
        for (const TPackage& package : packages) {
            if (package.format != eDeb || !package.version || package.status.ValueOr(0) == eNotInstalled ||
                package.status.ValueOr(0) == eConfigFiles)
                continue;
            fInstalled.emplace(package.name, TInstalled{&package, {}, {}});
            if (package.name == "dpkg") fNative = package.id;
        }
    }

    bool HasPackages() const { return !fInstalled.empty(); }

    void Look(const TAptList& list, std::string_view name, std::string_view paragraph) {
        const auto [first, last] = fInstalled.equal_range(name);
        if (first == last || list.archive.isManual) return;
        const std::string_view version = AptField(paragraph, "Version"),
                               architecture = AptField(paragraph, "Architecture");
        for (auto installed = first; installed != last; ++installed)
            if (!version.empty() && IsFor(architecture, installed->second.package->id))
                Look(list, version, installed->second);
    }

    std::vector<TPendingUpdate> Pending() const {
        std::vector<TPendingUpdate> pending;
        for (const auto& [name, installed] : fInstalled)
            if (const TNewest* const candidate = installed.Candidate(); candidate != nullptr)
                pending.push_back({std::string(name), installed.package->id, *installed.package->version,
                                   candidate->version, candidate->list->archive.suite, candidate->list->path,
                                   installed.isSecurity, installed.package->isHeld});
        std::sort(pending.begin(), pending.end(), [](const auto& a, const auto& b) {
            return std::tie(a.name, a.architecture) < std::tie(b.name, b.architecture);
        });
        return pending;
    }

private:
    static void Look(const TAptList& list, std::string_view version, TInstalled& installed) {
        const std::string& own = *installed.package->version;
        installed.isListed = installed.isListed || (version == own && !list.archive.isOnRequest);
        if (!IsOlderVersion(own, version)) return;
        installed.isSecurity = installed.isSecurity || list.archive.isSecurity;
        (list.archive.isOnRequest ? installed.onRequest : installed.automatic).Offer(version, list);
    }

    // A package of one architecture can become one of all, and the other way round.
    bool IsFor(std::string_view candidate, const std::string& installed) const {
        if (candidate == installed) return true;
        return candidate == "all" ? installed == fNative : installed == "all" && candidate == fNative;
    }

    std::unordered_multimap<std::string_view, TInstalled> fInstalled;
    std::string fNative;
};

TListing ReadLists(const TSystemRoot& root, const std::vector<TAptList>& lists, TUpdateFinder& finder) {
    TListing listing = TListing::Of(true, kAptLists);
    for (const TAptList& list : lists) {
        const TListing read = ReadAptList(root, list.path, [&](std::string_view name, std::string_view paragraph) {
            finder.Look(list, name, paragraph);
        });
        if (!read) listing = read;
    }
    return listing;
}

TFact<int64_t> NewestDate(const std::vector<TAptList>& lists) {
    TFact<int64_t> newest = TFact<int64_t>::Missing(EAbsence::eNotPresent, kAptLists);
    for (const TAptList& list : lists)
        if (list.archive.date && list.archive.date.ValueOr(0) > newest.ValueOr(INT64_MIN)) newest = list.archive.date;
    return newest;
}

// No file says that a reboot is needed; that tells something only where such files are written.
TFact<bool> ReadRebootRequired(const TSystemRoot& root) {
    if (root.Exists(kRebootRequired)) return TFact<bool>::Of(true, kRebootRequired);
    for (const char* notifier : kNotifiers)
        if (root.Exists(notifier)) return TFact<bool>::Of(false, kRebootRequired);
    return TFact<bool>::Missing(EAbsence::eNotPresent, kRebootRequired);
}

// A package stands there once for each time that it was installed.
TFact<std::vector<std::string>> ReadRebootPackages(const TSystemRoot& root) {
    return root.ReadFile(kRebootPackages, 1 << 16).Map([](const std::string& text) {
        const std::vector<std::string_view> lines = Split(text, '\n');
        std::vector<std::string> names(lines.begin(), lines.end());
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        return std::optional(std::move(names));
    });
}

// The first manager whose packages are on the machine, and whose lists are not read.
const TPackage* FindOther(const std::vector<TPackage>& packages) {
    const auto found = std::find_if(packages.begin(), packages.end(), [](const TPackage& package) {
        return package.format == eRpm || package.format == eApk || package.format == ePacman;
    });
    return found == packages.end() ? nullptr : &*found;
}

}  // namespace

TPendingUpdates ReadPendingUpdates(const TSystemRoot& root, const std::vector<TPackage>& packages) {
    TPendingUpdates updates;
    TUpdateFinder finder(packages);
    const TPackage* const other = FindOther(packages);
    const TFact<std::vector<std::string>> names = root.List(kAptLists);
    updates.listing = names ? TListing::Missing(EAbsence::eNotPresent, kAptLists) : ListingOf(names);
    if (other != nullptr)
        updates.listing = TListing::Missing(EAbsence::eNotSupported, kOtherLists[other->format - eRpm]);
    if (!finder.HasPackages()) return updates;
    const std::vector<TAptList> lists = FindAptLists(root, names.ValueOr({}));
    if (lists.empty()) return updates;
    const TListing read = ReadLists(root, lists, finder);
    if (other == nullptr || !read) updates.listing = read;
    updates.updates = finder.Pending();
    return updates;
}

std::optional<TUpdateState> ReadUpdateState(const TSystemRoot& root, const std::vector<TPackage>& packages) {
    const auto isOfDpkg = [](const TPackage& package) { return package.format == eDeb; };
    if (std::none_of(packages.begin(), packages.end(), isOfDpkg)) return std::nullopt;
    const TFact<std::vector<std::string>> names = root.List(kAptLists);
    TUpdateState state;
    state.listDate =
        names ? NewestDate(FindAptLists(root, *names)) : TFact<int64_t>::Missing(names.absence, names.source);
    state.rebootRequired = ReadRebootRequired(root);
    state.rebootPackages = ReadRebootPackages(root);
    return state;
}
