#include "export/PackageUrl.h"

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
    if (package.distribution.empty() || package.name.empty()) return "";
    std::string url =
        "pkg:deb/" + PercentEncoded(LowerCase(package.distribution)) + '/' + PercentEncoded(LowerCase(package.name));
    if (!package.version.empty()) url += '@' + PercentEncoded(package.version);
    // In the order of their keys, as the canonical form has them.
    AppendQualifier(url, "arch", package.architecture);
    AppendQualifier(url, "distro", package.release);
    AppendQualifier(url, "upstream", package.upstream);
    return url;
}
