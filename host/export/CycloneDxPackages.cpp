#include <algorithm>
#include <iterator>
#include <utility>

#include "export/CycloneDxModel.h"
#include "export/PackageUrl.h"
#include "kyr/TCIMInstance.h"
#include "model/ReadingOrder.h"
#include "render/SummaryPieces.h"
#include "states/StateInstances.h"

namespace {

// The numbers of MOLTA_Package.PackageStatus that decide; those between them are on the way.
constexpr unsigned short kNotInstalled = 1, kConfigurationLeft = 2, kInstalled = 8;

/// What the numbers of MOLTA_Package.PackageFormat mean here; 0 is a package of a collection that knew only dpkg.
struct TFormat {
    bool hasUrl;  ///< There is a type of package URLs for it.
    EPackageUrlType type;
    bool hasRelease;  ///< Behind the last hyphen of a version stands the release.
    const char* sourceArchitecture;
};
constexpr TFormat kDeb = {true, EPackageUrlType::eDeb, true, "source"};
constexpr TFormat kBundle = {false, EPackageUrlType::eDeb, false, ""};
constexpr TFormat kFormats[] = {kDeb,
                                kDeb,
                                {true, EPackageUrlType::eRpm, true, "src"},
                                {true, EPackageUrlType::eApk, false, "source"},
                                {true, EPackageUrlType::eAlpm, false, "source"},
                                kBundle,
                                kBundle};
/// In the order of MOLTA_LanguagePackage.PackageFormat, from 1.
constexpr std::pair<const char*, EPackageUrlType> kLanguages[] = {{"pypi", EPackageUrlType::ePypi},
                                                                  {"npm", EPackageUrlType::eNpm}};

/// The names under which the scanner trivy looks for the source package. It reads no other.
constexpr const char* kTrivyName = "aquasecurity:trivy:SrcName";
constexpr const char* kTrivyVersion = "aquasecurity:trivy:SrcVersion";
constexpr const char* kTrivyRelease = "aquasecurity:trivy:SrcRelease";
constexpr const char* kTrivyEpoch = "aquasecurity:trivy:SrcEpoch";

struct TNamedVersion {
    std::string name;
    std::string version;
};

/// A version as Debian's policy divides it: "1:2.3-4" is epoch 1, version 2.3 and release 4.
struct TVersionParts {
    std::string epoch = "0";
    std::string version;
    std::string release;
};

bool IsNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

TVersionParts PartsOf(const std::string& text, bool hasRelease) {
    TVersionParts parts;
    parts.version = text;
    if (const size_t colon = text.find(':'); colon != std::string::npos && IsNumber(text.substr(0, colon))) {
        parts.epoch = text.substr(0, colon);
        parts.version = text.substr(colon + 1);
    }
    if (const size_t hyphen = parts.version.rfind('-'); hasRelease && hyphen != std::string::npos) {
        parts.release = parts.version.substr(hyphen + 1);
        parts.version.erase(hyphen);
    }
    return parts;
}

// What stands in brackets behind a text, as in "z-example (1.3)" and "Name <address>".
TNamedVersion SplitAt(const std::string& text, char open, char close) {
    const size_t at = text.find(open);
    if (at == std::string::npos || text.back() != close) return {text, ""};
    const std::string before = text.substr(0, at);
    return {before.substr(0, before.find_last_not_of(' ') + 1), text.substr(at + 1, text.size() - at - 2)};
}

TNamedVersion SourceOf(const TBomValues& package, const TNamedVersion& binary) {
    const TNamedVersion source = SplitAt(package.Get("SourcePackage"), '(', ')');
    return {source.name.empty() ? binary.name : source.name, source.version.empty() ? binary.version : source.version};
}

// Words of those characters with single dots between them.
bool IsDotted(const std::string& text, const std::string& characters) {
    return !text.empty() && text.find_first_not_of(characters + '.') == std::string::npos && text.front() != '.' &&
           text.back() != '.' && text.find("..") == std::string::npos;
}

// Stricter than the rules for e-mail addresses, as validators are: a domain ends in a name of two letters or more.
bool IsAddress(const std::string& text) {
    const std::string inDomain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-";
    const size_t at = text.find('@'), dot = text.rfind('.');
    if (at == std::string::npos || dot == std::string::npos || dot < at || text.size() - dot < 3) return false;
    const std::string domain = text.substr(at + 1);
    return IsDotted(text.substr(0, at), inDomain + "_+") && IsDotted(domain, inDomain) &&
           ('.' + domain + '.').find(".-") == std::string::npos && (domain + '.').find("-.") == std::string::npos;
}

// Validators refuse an address that is none, and some maintainers give the address of a page.
void AddSupplier(const std::string& maintainer, TBomComponent& component) {
    const TNamedVersion parts = SplitAt(maintainer, '<', '>');
    component.supplier = parts.name.empty() ? maintainer : parts.name;
    if (IsAddress(parts.version)) component.email = parts.version;
}

void AddSource(const TNamedVersion& source, const TFormat& format, TBomComponent& component) {
    const TVersionParts parts = PartsOf(source.version, format.hasRelease);
    const TBomProperty properties[] = {{kTrivyName, source.name},
                                       {kTrivyVersion, parts.version},
                                       {kTrivyRelease, parts.release},
                                       {kTrivyEpoch, parts.epoch}};
    for (const TBomProperty& property : properties)
        if (!property.value.empty()) component.properties.push_back(property);
}

/// The distribution that packages are of, as scanners name it.
struct TDistribution {
    std::string id;
    std::string release;  // "debian-12"; empty for one without releases
};

// What os-release allows as an ID. Nothing else can be part of a package URL.
bool IsDistributionId(const std::string& id) {
    return id.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789._-") == std::string::npos;
}

TDistribution DistributionOf(const TBomValues& system) {
    const std::string id = system.Get("DistributionID"), version = system.Get("Version");
    if (!IsDistributionId(id)) return {};
    return {id, version.empty() ? "" : id + '-' + version};
}

/// Adds the packages of one operating system.
class TPackages {
public:
    TPackages(TDistribution distribution, bool withSources, TBom& bom)
        : fDistribution(std::move(distribution)), fWithSources(withSources), fBom(bom) {}

    void Add(const TCIMInstance& instance) {
        const TBomValues values(instance, true);
        const TFormat& format =
            kFormats[std::min<size_t>(NumberOf(instance, "PackageFormat"), std::size(kFormats) - 1)];
        const TNamedVersion binary = {values.Get("Name"), values.Get("Version")};
        const std::string id = values.Get("SoftwareElementID");
        const TNamedVersion source = SourceOf(values, binary);
        TBomComponent component = {"library", "package:" + binary.name + ':' + id, binary.name, binary.version};
        // Behind a colon stands the version, where several are installed.
        component.purl = UrlOf(format, binary, id.substr(0, id.find(':')), UpstreamOf(format, binary, source));
        AddSupplier(values.Get("Manufacturer"), component);
        if (format.hasUrl) AddSource(source, format, component);
        const std::string ref = AddToSystem(std::move(component), instance);
        if (fWithSources && format.hasUrl) fBom.AddDependency(ref, RefOfSource(format, source));
    }

    void AddOfLanguage(const TCIMInstance& instance) {
        const size_t format = NumberOf(instance, "PackageFormat");
        if (format == 0 || format > std::size(kLanguages)) return;
        const auto& [prefix, type] = kLanguages[format - 1];
        const TBomValues values(instance, true);
        const std::string name = values.Get("Name"), version = values.Get("Version");
        TBomComponent component = {"library", std::string(prefix) + ':' + name, name, version};
        component.purl = PackageUrlOf({"", name, version, "", "", "", type});
        AddSupplier(values.Get("Manufacturer"), component);
        AddToSystem(std::move(component), instance);
    }

private:
    std::string AddToSystem(TBomComponent component, const TCIMInstance& instance) {
        const std::string ref = fBom.Add(std::move(component), &instance);
        fBom.AddDependency(fBom.HasRef(kSystemRef) ? kSystemRef : kMachineRef, ref);
        return ref;
    }

    std::string UrlOf(const TFormat& format, const TNamedVersion& package, const std::string& architecture,
                      const std::string& upstream) const {
        if (!format.hasUrl) return "";
        return PackageUrlOf({fDistribution.id, package.name, package.version, architecture, fDistribution.release,
                             upstream, format.type});
    }

    // Of rpm, scanners know the file of the source package.
    static std::string UpstreamOf(const TFormat& format, const TNamedVersion& binary, const TNamedVersion& source) {
        if (source.name == binary.name && source.version == binary.version) return "";
        const TVersionParts parts = PartsOf(source.version, format.hasRelease);
        if (format.type == EPackageUrlType::eRpm)
            return source.name + '-' + parts.version + '-' + parts.release + ".src.rpm";
        return source.version.empty() ? source.name : source.name + '@' + source.version;
    }

    // Many packages are built from one source.
    std::string RefOfSource(const TFormat& format, const TNamedVersion& source) {
        const std::string ref = "source:" + source.name + ':' + source.version;
        if (fBom.HasRef(ref)) return ref;
        TBomComponent component = {"library", ref, source.name, source.version};
        component.purl = UrlOf(format, source, format.sourceArchitecture, "");
        return fBom.Add(std::move(component));
    }

    const TDistribution fDistribution;
    const bool fWithSources;
    TBom& fBom;
};

// Scanners take the distribution from this component: from its name, which is the ID in os-release, and its version.
void AddOperatingSystem(const TBomValues& values, const TCIMInstance& instance, TBom& bom) {
    const std::string id = values.Get("DistributionID"), name = values.Get("Name");
    TBomComponent system = {"operating-system", kSystemRef, id.empty() ? name : id, values.Get("Version")};
    if (system.name.empty()) system.name = "unknown";
    system.description = values.Get("Caption");
    for (const auto& [property, told] :
         {std::pair("KernelRelease", "kyr:kernelRelease"), std::pair("PointRelease", "kyr:pointRelease"),
          std::pair("Architecture", "kyr:architecture")})
        if (const std::string value = values.Get(property); !value.empty()) system.properties.push_back({told, value});
    bom.AddDependency(kMachineRef, bom.Add(std::move(system), &instance));
}

TDistribution AddFirstSystem(const TContainer& container, TBom& bom) {
    const std::vector<TCIMInstance*> systems = InNaturalOrder(InstancesOf(container, kOperatingSystemClass));
    if (systems.empty()) return {};
    const TBomValues values(*systems.front(), true);
    AddOperatingSystem(values, *systems.front(), bom);
    return DistributionOf(values);
}

}  // namespace

EInstalled HowInstalled(const TCIMInstance& package) {
    const unsigned short status = NumberOf(package, "PackageStatus");
    if (status == kInstalled) return EInstalled::eYes;
    return status == kNotInstalled || status == kConfigurationLeft ? EInstalled::eNo : EInstalled::eInPart;
}

void AddSoftware(const TContainer& container, const TCycloneDxOptions& options, TBom& bom) {
    TPackages packages(AddFirstSystem(container, bom), options.sourcePackages, bom);
    for (const TCIMInstance* instance : InNaturalOrder(InstancesOf(container, kPackageClass)))
        if (HowInstalled(*instance) == EInstalled::eYes) packages.Add(*instance);
    for (const TCIMInstance* instance : InNaturalOrder(InstancesOf(container, kLanguagePackageClass)))
        packages.AddOfLanguage(*instance);
}
