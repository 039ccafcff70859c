#include "PackageFormats.h"

namespace {

std::optional<uint64_t> ParseBytes(std::string_view text) { return ParseNumber<uint64_t>(text); }

constexpr TFieldNames kFieldNames = {eApk, "P", "A", "V", "m", nullptr, "o", "T", "I", nullptr, ParseBytes};

}  // namespace

std::vector<TPackage> ParseApkInstalled(std::string_view text, const std::string& source) {
    std::vector<TPackage> packages;
    while (!text.empty()) {
        TPackage package = MakePackage(ParseFields(TakeParagraph(text)), kFieldNames, source);
        if (!package.name.empty()) packages.push_back(std::move(package));
    }
    return packages;
}

TPackageSource ReadApk(const TSystemRoot& root) {
    const TPackageSource found = ReadPackageFile(root, "/lib/apk/db/installed", ParseApkInstalled);
    if (!found.packages.empty() || !found.listing) return found;
    return ReadPackageFile(root, "/usr/lib/apk/db/installed", ParseApkInstalled);
}
