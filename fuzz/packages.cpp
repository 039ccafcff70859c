// What package managers keep of packages, repositories and lists. The first byte tells which form it is.
#include <cstdint>

#include "AptLists.h"
#include "DebianVersion.h"
#include "PackageFormats.h"
#include "RepositoryFiles.h"
#include "support/FuzzSupport.h"

namespace {

const std::string kSource = "source";

void CheckPackages(const std::vector<TPackage>& packages, size_t size) {
    for (const TPackage& package : packages)
        Require(!package.name.empty() && package.name.size() <= size, "a package has a name of the text");
}

void CheckRpm(const std::string& text) {
    const TPackage package = ParseRpmHeader(text, kSource);
    // The version is put together of three entries, which may be the same bytes.
    Require(package.name.size() + package.id.size() <= 2 * text.size(), "names stand in the header");
    Require(package.version.ValueOr("").size() <= 2 * text.size() + 32, "the version stands in the header");
}

void CheckRepositories(const TRepositories& repositories) {
    Require(repositories.size() <= kMostRepositories, "repositories have a limit");
    for (const TRepository& repository : repositories)
        for (const std::string& url : repository.urls)
            Require(WithoutSecrets(url).size() <= url.size(), "an address does not grow");
}

void CheckVersions(const std::string& text) {
    const size_t middle = text.find('\n');
    const std::string_view a = std::string_view(text).substr(0, middle),
                           b = middle == std::string::npos ? "" : std::string_view(text).substr(middle + 1);
    Require(!IsOlderVersion(a, a), "no version is older than itself");
    Require(!IsOlderVersion(a, b) || !IsOlderVersion(b, a), "one version is older");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TByteReader input(data, size);
    const std::uint8_t form = input.Byte();
    const std::string text = input.Bytes(size);
    switch (form % 10) {
        case 0:
            CheckRpm(text);
            break;
        case 1:
            CheckPackages(ParseDpkgStatus(text, kSource), size);
            break;
        case 2:
            CheckPackages(ParseApkInstalled(text, kSource), size);
            break;
        case 3:
            ParsePacmanDesc(text, kSource);
            break;
        case 4:
            CheckRepositories(ParseAptLines(text, kSource));
            break;
        case 5:
            CheckRepositories(ParseAptParagraphs(text, kSource));
            break;
        case 6:
            CheckRepositories(ParseYumRepositories(text, kSource));
            break;
        case 7:
            CheckRepositories(ParsePacmanRepositories(text, kSource, [&](const std::string&) { return text; }));
            break;
        case 8:
            ParseAptRelease(text, kSource);
            break;
        default:
            CheckVersions(text);
    }
    return 0;
}
