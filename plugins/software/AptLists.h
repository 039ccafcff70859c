#ifndef KYR_PLUGINS_SOFTWARE_APTLISTS_H
#define KYR_PLUGINS_SOFTWARE_APTLISTS_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// What an archive says of itself in its Release file.
struct TAptArchive {
    std::string suite;
    TFact<int64_t> date;  ///< in seconds since 1970
    bool isSecurity = false;
    /// Nothing is taken from it unless it is asked for, as from "experimental".
    bool isManual = false;
    /// Taken from it is only what was taken from it before, as from backports.
    bool isOnRequest = false;
};

/// A list of the packages that an archive has for an architecture.
struct TAptList {
    std::string path;
    TAptArchive archive;
};

TAptArchive ParseAptRelease(std::string_view text, const std::string& source);
/// The lists of /var/lib/apt/lists, in order of their names.
std::vector<TAptList> FindAptLists(const TSystemRoot& root, const std::vector<std::string>& names);

/// Takes the name and the whole paragraph of a package.
using TTakePackage = std::function<void(std::string_view name, std::string_view paragraph)>;
/// Gives all packages of a list. Tells whether it could be read to its end.
TListing ReadAptList(const TSystemRoot& root, const std::string& path, const TTakePackage& take);
/// The value of a field in a paragraph that begins with "Package"; empty if there is none.
std::string_view AptField(std::string_view paragraph, std::string_view name);

constexpr const char* kAptLists = "/var/lib/apt/lists";

#endif
