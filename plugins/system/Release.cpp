#include "OsRelease.h"
#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

std::string FirstWord(std::string_view text) { return std::string(text.substr(0, text.find(' '))); }

// "CentOS Linux release 7.9.2009 (Core)"
std::optional<std::string> FindRelease(const std::string& text) {
    constexpr std::string_view kWord = " release ";
    const size_t at = text.find(kWord);
    return at == std::string::npos ? std::nullopt : std::optional(FirstWord(text.substr(at + kWord.size())));
}

// "22.04.4 LTS (Jammy Jellyfish)" where the version is 22.04.
TText FindLongerVersion(const TText& osRelease, const std::string& version) {
    const TText whole = FindOsReleaseValue(osRelease, "VERSION");
    const std::string word = FirstWord(whole.ValueOr(""));
    return !version.empty() && StartsWith(word, version + '.') ? TText::Of(word, whole.source) : TText();
}

// No value and no source if the version is the whole release.
TText FindPointRelease(const TSystemRoot& root, const TText& osRelease, const TSystemFacts& facts) {
    const std::string version = facts.osVersion.ValueOr("");
    if (facts.osId.ValueOr("") != "centos") return FindLongerVersion(osRelease, version);
    const TText release = root.ReadText("/etc/centos-release").Map(FindRelease);
    return release.ValueOr("") == version ? TText() : release;
}

// The name in "9.4 (Seafoam Ocelot)". Some write the variant in this place.
std::optional<std::string> FindInParentheses(const std::string& version) {
    const size_t start = version.rfind('('), end = version.rfind(')');
    if (start == std::string::npos || end == std::string::npos || end <= start + 1) return {};
    return version.substr(start + 1, end - start - 1);
}

TText FindCodename(const TText& osRelease, const TText& variant) {
    const TText told = FindOsReleaseValue(osRelease, "VERSION_CODENAME"),
                inside = FindOsReleaseValue(osRelease, "VERSION").Map(FindInParentheses);
    const bool isVariant = inside && inside.value == variant.value;
    return told || !inside || isVariant ? told : inside;
}

}  // namespace

void ReadRelease(const TSystemRoot& root, const TFact<std::string>& osRelease, TSystemFacts& facts) {
    // Not set already, as that of Debian is.
    if (facts.pointRelease.source.empty()) facts.pointRelease = FindPointRelease(root, osRelease, facts);
    facts.variant = FindOsReleaseValue(osRelease, "VARIANT");
    facts.variantId = FindOsReleaseValue(osRelease, "VARIANT_ID");
    facts.codename = FindCodename(osRelease, facts.variant);
}
