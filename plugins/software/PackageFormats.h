#ifndef KYR_PLUGINS_SOFTWARE_PACKAGEFORMATS_H
#define KYR_PLUGINS_SOFTWARE_PACKAGEFORMATS_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Fields.h"
#include "SoftwareFacts.h"

// What single package managers keep of the packages that are installed.

/// Of /var/lib/dpkg/status.
std::vector<TPackage> ParseDpkgStatus(std::string_view text, const std::string& source);
/// Of the file "installed" of apk.
std::vector<TPackage> ParseApkInstalled(std::string_view text, const std::string& source);
/// Of a file "desc" of pacman. Without a name if it is none.
TPackage ParsePacmanDesc(std::string_view text, const std::string& source);
/// Of a header in the data base of rpm. Without a name if it is damaged.
TPackage ParseRpmHeader(std::string_view header, const std::string& source);

/// What reading the packages of one manager gave. Where the manager is not used, nothing is missing.
struct TPackageSource {
    TListing listing = TListing::Of(true, "");
    std::vector<TPackage> packages = {};
};

TPackageSource ReadDpkg(const TSystemRoot& root);
TPackageSource ReadRpm(const TSystemRoot& root);
TPackageSource ReadApk(const TSystemRoot& root);
TPackageSource ReadPacman(const TSystemRoot& root);
TPackageSource ReadFlatpak(const TSystemRoot& root);
TPackageSource ReadSnap(const TSystemRoot& root);

/// Of a manager that keeps all packages in one file.
TPackageSource ReadPackageFile(const TSystemRoot& root, const std::string& path,
                               std::vector<TPackage> (*parse)(std::string_view, const std::string&));
/// A manager of which the source cannot be read; one that is not present is not used.
TPackageSource WithoutPackages(EAbsence absence, const std::string& path);

/// The names of the fields that packages of a format have; null for what it does not have.
struct TFieldNames {
    uint16_t format;
    const char *name, *architecture, *version, *maintainer, *section, *source, *summary, *installedSize, *installDate;
    std::optional<uint64_t> (*parseSize)(std::string_view);
};
TPackage MakePackage(const TFields& fields, const TFieldNames& names, const std::string& source);

#endif
