#include "export/PackageUrl.h"

#include <algorithm>
#include <string_view>

namespace {

// The standard functions for kinds of characters go by the locale.
bool IsPlain(unsigned char c) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:";
    return kPlain.find(static_cast<char>(c)) != std::string_view::npos;
}

// Names in URLs of this type are compared without regard to case, so the type has them written in lower case.
std::string LowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
    return text;
}

/// How the URLs of a type are written.
struct TRules {
    const char* type;
    bool hasDistribution;
    bool hasCase;        ///< names are told apart by case
    bool hasEpochApart;  ///< the epoch of a version is a qualifier
};

// In the order of EPackageUrlType.
constexpr TRules kRules[] = {{"deb", true, false, false},  {"rpm", true, true, true},     {"apk", true, false, false},
                             {"alpm", true, false, false}, {"pypi", false, false, false}, {"npm", false, false, false}};

// Names at PyPI are the same with "_" and "-".
std::string NameOf(const TPackageUrl& package, const TRules& rules) {
    std::string name = rules.hasCase ? package.name : LowerCase(package.name);
    if (package.type == EPackageUrlType::ePypi) std::replace(name.begin(), name.end(), '_', '-');
    const size_t scope = package.type == EPackageUrlType::eNpm && name[0] == '@' ? name.find('/') : std::string::npos;
    if (scope == std::string::npos) return PercentEncoded(name);
    return PercentEncoded(name.substr(0, scope)) + '/' + PercentEncoded(name.substr(scope + 1));
}

// "1:2.3-4" is epoch 1.
std::string EpochOf(const std::string& version) {
    const size_t colon = version.find(':');
    const bool isNumber = colon != std::string::npos && version.find_first_not_of("0123456789") == colon;
    return isNumber && colon != 0 ? version.substr(0, colon) : "";
}

void AppendQualifier(std::string& url, const char* key, const std::string& value) {
    if (value.empty()) return;
    url += url.find('?') == std::string::npos ? '?' : '&';
    url += key;
    url += '=' + PercentEncoded(value);
}

}  // namespace

std::string PercentEncoded(const std::string& text) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string encoded;
    for (const unsigned char c : text) {
        if (IsPlain(c))
            encoded += static_cast<char>(c);
        else
            encoded += {'%', kDigits[c / 16], kDigits[c % 16]};
    }
    return encoded;
}

std::string PackageUrlOf(const TPackageUrl& package) {
    const TRules& rules = kRules[static_cast<size_t>(package.type)];
    if (package.name.empty() || (rules.hasDistribution && package.distribution.empty())) return "";
    std::string url = std::string("pkg:") + rules.type + '/';
    if (rules.hasDistribution) url += PercentEncoded(LowerCase(package.distribution)) + '/';
    url += NameOf(package, rules);
    const std::string epoch = rules.hasEpochApart ? EpochOf(package.version) : "";
    const std::string version = package.version.substr(epoch.empty() ? 0 : epoch.size() + 1);
    if (!version.empty()) url += '@' + PercentEncoded(version);
    // In the order of their keys, as the canonical form has them.
    AppendQualifier(url, "arch", package.architecture);
    AppendQualifier(url, "distro", package.release);
    AppendQualifier(url, "epoch", epoch);
    AppendQualifier(url, "upstream", package.upstream);
    return url;
}
