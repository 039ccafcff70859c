#include <algorithm>
#include <iterator>
#include <tuple>

#include "OsRelease.h"
#include "PackageFormats.h"

namespace {

/// A manager of packages, and the distributions that use it, by ID or ID_LIKE.
struct TFamily {
    TPackageSource (*read)(const TSystemRoot&);
    const char* path;  ///< where its packages are expected
    const char* distributions;
};

constexpr TFamily kFamilies[] = {
    {ReadDpkg, "/var/lib/dpkg/status", " debian ubuntu "},
    {ReadRpm, "/var/lib/rpm",
     " fedora rhel centos almalinux rocky amzn ol suse opensuse sles opensuse-leap opensuse-tumbleweed mageia "
     "azurelinux "
     "openeuler "},
    {ReadApk, "/lib/apk/db/installed", " alpine wolfi chainguard postmarketos "},
    {ReadPacman, "/var/lib/pacman/local", " arch archarm manjaro "},
};
/// What any distribution may have beside its own packages.
constexpr TPackageSource (*kOthers[])(const TSystemRoot&) = {ReadFlatpak, ReadSnap};
/// Distributions with packages that are not read.
constexpr const char* kUnread = " gentoo nixos guix slackware void solus clear-linux-os exherbo crux ";

bool IsListed(std::string_view list, std::string_view name) {
    return list.find(' ' + std::string(name) + ' ') != std::string_view::npos;
}

/// What the distribution says that it is.
class TDistributionNames {
public:
    explicit TDistributionNames(const TSystemRoot& root) : fFile(ReadOsReleaseFile(root)) {
        fId = FindOsReleaseValue(fFile, "ID").ValueOr("");
        fNames = fId + ' ' + FindOsReleaseValue(fFile, "ID_LIKE").ValueOr("");
    }

    const std::string& Id() const { return fId; }
    bool IsOneOf(std::string_view list) const {
        const std::vector<std::string_view> names = Split(fNames, ' ');
        return std::any_of(names.begin(), names.end(), [list](const auto& name) { return IsListed(list, name); });
    }

private:
    TFact<std::string> fFile;
    std::string fId;
    std::string fNames;
};

/// The packages of all families, and of which families there are any.
class TFamilies {
public:
    explicit TFamilies(const TSystemRoot& root) : fDistribution(root) {
        for (const TFamily& family : kFamilies) {
            TPackageSource source = family.read(root);
            fHas.push_back(!source.packages.empty());
            fIsTold.push_back(!source.listing);
            Add(std::move(source));
        }
        for (const auto& read : kOthers) Add(read(root));
        if (TListing expected = FindExpected(); !expected) fFound.missing.push_back(std::move(expected));
    }

    TFound<TPackage> Take() { return std::move(fFound); }

private:
    void Add(TPackageSource source) {
        std::move(source.packages.begin(), source.packages.end(), std::back_inserter(fFound.items));
        if (!source.listing) fFound.missing.push_back(std::move(source.listing));
    }

    // Whether the packages that the distribution itself is made of were found.
    TListing FindExpected() const {
        const std::string unsupported = "packages of " + fDistribution.Id();
        for (size_t i = 0; i < std::size(kFamilies); ++i)
            if (fDistribution.IsOneOf(kFamilies[i].distributions)) return IsFound(i);
        if (!fDistribution.IsOneOf(kUnread) && std::find(fHas.begin(), fHas.end(), true) != fHas.end())
            return TListing::Of(true, "");
        return fDistribution.Id().empty() ? IsFound(0) : TListing::Missing(EAbsence::eNotSupported, unsupported);
    }

    TListing IsFound(size_t family) const {
        if (fHas[family] || fIsTold[family]) return TListing::Of(true, "");
        return TListing::Missing(EAbsence::eNotPresent, kFamilies[family].path);
    }

    const TDistributionNames fDistribution;
    TFound<TPackage> fFound;
    std::vector<bool> fHas;
    std::vector<bool> fIsTold;  // that its packages could not be read
};

bool IsBefore(const TPackage& a, const TPackage& b) {
    return std::tie(a.name, a.id, a.format) < std::tie(b.name, b.id, b.format);
}
bool HasSameKeys(const TPackage& a, const TPackage& b) { return a.name == b.name && a.id == b.id; }

// Several versions of one package can be installed, as of kernels, and two managers can know a package of one name.
// Those of dpkg have always had the architecture alone.
void MakeUnique(std::vector<TPackage>& packages) {
    std::sort(packages.begin(), packages.end(), IsBefore);
    for (auto first = packages.begin(); first != packages.end();) {
        const auto last =
            std::find_if_not(first, packages.end(), [first](const auto& other) { return HasSameKeys(*first, other); });
        if (last - first > 1)
            std::for_each(first, last, [](TPackage& package) {
                if (package.format != eDeb) package.id += ':' + package.version.ValueOr("");
            });
        first = last;
    }
    std::stable_sort(packages.begin(), packages.end(), IsBefore);
    packages.erase(std::unique(packages.begin(), packages.end(), HasSameKeys), packages.end());
}

}  // namespace

TPackage MakePackage(const TFields& fields, const TFieldNames& names, const std::string& source) {
    const auto field = [&](const char* name) {
        return name != nullptr ? FieldOf(fields, name, source) : TFact<std::string>();
    };
    TPackage package;
    package.format = names.format;
    package.name = field(names.name).ValueOr("");
    package.id = field(names.architecture).ValueOr("");
    package.version = field(names.version);
    package.maintainer = field(names.maintainer);
    package.section = field(names.section);
    package.source = field(names.source);
    if (package.source && *package.source == package.name) package.source.value.reset();
    package.summary = field(names.summary);
    package.installedSize =
        field(names.installedSize).Map([&](const std::string& text) { return names.parseSize(text); });
    if (names.installDate != nullptr)
        package.installDate =
            field(names.installDate).Map([](const std::string& text) { return ParseNumber<int64_t>(text); });
    package.status = TFact<uint16_t>::Of(eInstalled, source);
    return package;
}

TPackageSource WithoutPackages(EAbsence absence, const std::string& path) {
    if (absence == EAbsence::eNotPresent) return {};
    return {TListing::Missing(absence, path)};
}

TPackageSource ReadPackageFile(const TSystemRoot& root, const std::string& path,
                               std::vector<TPackage> (*parse)(std::string_view, const std::string&)) {
    constexpr size_t kMostText = 256 << 20;
    const TFact<std::string> text = root.ReadFile(path, kMostText);
    if (!text) return WithoutPackages(text.absence, path);
    return {TListing::Of(true, path), parse(*text, path)};
}

TFound<TPackage> ReadPackages(const TSystemRoot& root) {
    TFound<TPackage> found = TFamilies(root).Take();
    MakeUnique(found.items);
    return found;
}
