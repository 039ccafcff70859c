#ifndef KYR_HOST_EXPORT_PACKAGEURL_H
#define KYR_HOST_EXPORT_PACKAGEURL_H

#include <string>

/// The types of package URLs that packages here have; their rules differ.
enum class EPackageUrlType { eDeb, eRpm, eApk, eAlpm, ePypi, eNpm };

/// A package as package URLs name one. What is empty is left out.
struct TPackageUrl {
    std::string distribution;  ///< its ID in os-release, such as "debian"; packages of languages have none
    std::string name;
    std::string version;
    std::string architecture = {};
    std::string release = {};   ///< of the distribution, such as "debian-12"
    std::string upstream = {};  ///< the source package, as "name@version"
    EPackageUrlType type = EPackageUrlType::eDeb;
};

/// The text as package URLs hold it: ASCII letters, digits and "-._~:" as they are, all else as "%2B".
std::string PercentEncoded(const std::string& text);
/// The package URL, such as "pkg:deb/debian/bash@5.2.15-2%2Bb7?arch=amd64&distro=debian-12". Empty without a name, or
/// of a package of a system without a distribution, which such a URL must have.
std::string PackageUrlOf(const TPackageUrl& package);

#endif
