#include "OsRelease.h"

#include "SystemFacts.h"

void ReadOsRelease(const TSystemRoot& root, TSystemFacts& facts) {
    const TFact<std::string> file = ReadOsReleaseFile(root);
    facts.osReleaseListing = ListingOf(file);
    facts.osName = FindOsReleaseValue(file, "NAME");
    facts.osPrettyName = FindOsReleaseValue(file, "PRETTY_NAME");
    facts.osId = FindOsReleaseValue(file, "ID");
    facts.osVersion = FindOsReleaseValue(file, "VERSION_ID");
    // Rolling distributions have only a BUILD_ID.
    if (!facts.osVersion) facts.osVersion = FindOsReleaseValue(file, "BUILD_ID");
}
