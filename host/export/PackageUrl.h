#ifndef KYR_HOST_EXPORT_PACKAGEURL_H
#define KYR_HOST_EXPORT_PACKAGEURL_H

#include <string>

/// A package of a distribution, as package URLs of the type "deb" name one. What is empty is left out.
struct TPackageUrl {
    std::string distribution;  ///< its ID in os-release, such as "debian"
    std::string name;
    std::string version;
    std::string architecture = {};
    std::string release = {};   ///< of the distribution, such as "debian-12"
    std::string upstream = {};  ///< the source package, as "name@version"
};

/// The text as package URLs hold it: ASCII letters, digits and "-._~:" as they are, all else as "%2B".
std::string PercentEncoded(const std::string& text);
/// The package URL, such as "pkg:deb/debian/bash@5.2.15-2%2Bb7?arch=amd64&distro=debian-12". Empty without a name or a
/// distribution, which such a URL must have.
std::string PackageUrlOf(const TPackageUrl& package);

#endif
