#include "OsRelease.h"

#include "SystemFacts.h"

namespace {

// Before a release, the file names it and not a number: "trixie/sid".
std::optional<std::string> CheckRelease(const std::string& text) {
    return text[0] >= '0' && text[0] <= '9' ? std::optional(text) : std::nullopt;
}

}  // namespace

void ReadOsRelease(const TSystemRoot& root, TSystemFacts& facts) {
    const TFact<std::string> file = ReadOsReleaseFile(root);
    facts.osReleaseListing = ListingOf(file);
    facts.osName = FindOsReleaseValue(file, "NAME");
    facts.osPrettyName = FindOsReleaseValue(file, "PRETTY_NAME");
    facts.osId = FindOsReleaseValue(file, "ID");
    facts.osVersion = FindOsReleaseValue(file, "VERSION_ID");
    // Rolling distributions have only a BUILD_ID.
    if (!facts.osVersion) facts.osVersion = FindOsReleaseValue(file, "BUILD_ID");
    // Distributions that derive from Debian have the file too, and in it the release of Debian.
    if (facts.osId.ValueOr("") == "debian") facts.pointRelease = root.ReadText("/etc/debian_version").Map(CheckRelease);
    ReadRelease(root, file, facts);
}
