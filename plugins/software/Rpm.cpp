#include <algorithm>

#include "PackageFormats.h"
#include "SqliteFile.h"

namespace {

constexpr const char* kFolders[] = {"/usr/lib/sysimage/rpm", "/var/lib/rpm"};
/// The data bases of older versions: of Berkeley DB, and rpm's own.
constexpr const char* kOlderForms[] = {"/Packages", "/Packages.db"};

/// The name under which keys that packages are signed by stand among them.
constexpr std::string_view kPublicKey = "gpg-pubkey";

enum ERpmTag : uint32_t {
    eTagName = 1000,
    eTagVersion = 1001,
    eTagRelease = 1002,
    eTagEpoch = 1003,
    eTagSummary = 1004,
    eTagInstallTime = 1008,
    eTagSize = 1009,
    eTagVendor = 1011,
    eTagPackager = 1015,
    eTagGroup = 1016,
    eTagArchitecture = 1022,
    eTagSourceRpm = 1044,
    eTagLongSize = 5009,
};

enum ERpmType : uint32_t { eTypeInt32 = 4, eTypeInt64 = 5, eTypeString = 6, eTypeTranslated = 9 };

/// A header of rpm: the number of its entries, the length of its data, the entries of tag, type, offset and count, and
/// the data. All numbers are big-endian.
class TRpmHeader {
public:
    TRpmHeader(std::string_view bytes, const std::string& source) : fSource(source) {
        constexpr size_t kStart = 8;
        const uint64_t entries = bytes.size() < kStart ? 0 : Number(bytes, 0, 4),
                       length = bytes.size() < kStart ? 0 : Number(bytes, 4, 4);
        if (bytes.size() < kStart || bytes.size() - kStart < entries * kEntry + length) return;
        fEntries = bytes.substr(kStart, entries * kEntry);
        fData = bytes.substr(kStart + fEntries.size(), length);
    }

    /// Of a text in several languages, the first, which is English.
    TFact<std::string> Text(ERpmTag tag) const {
        const std::string_view entry = Find(tag);
        const uint64_t type = TypeOf(entry);
        if (type != eTypeString && type != eTypeTranslated) return Absent<std::string>(entry);
        const std::string_view rest = DataOf(entry);
        const size_t end = rest.find('\0');
        if (end == std::string_view::npos) return TFact<std::string>::Missing(EAbsence::eNotSupported, fSource);
        const std::string_view text = Trim(rest.substr(0, end));
        if (text.empty() || text == "(none)") return TFact<std::string>::Missing(EAbsence::eNotPresent, fSource);
        return TFact<std::string>::Of(std::string(text), fSource);
    }

    TFact<uint64_t> Integer(ERpmTag tag) const {
        const std::string_view entry = Find(tag);
        const uint64_t type = TypeOf(entry);
        const size_t size = type == eTypeInt32 ? 4 : 8;
        if ((type != eTypeInt32 && type != eTypeInt64) || DataOf(entry).size() < size) return Absent<uint64_t>(entry);
        return TFact<uint64_t>::Of(Number(DataOf(entry), 0, size), fSource);
    }

private:
    static constexpr size_t kEntry = 16;

    static uint64_t Number(std::string_view bytes, size_t at, size_t size) {
        uint64_t number = 0;
        for (const char byte : bytes.substr(at, size)) number = number << 8 | static_cast<unsigned char>(byte);
        return number;
    }
    static uint64_t TypeOf(std::string_view entry) { return entry.empty() ? 0 : Number(entry, 4, 4); }

    std::string_view Find(uint32_t tag) const {
        for (size_t at = 0; at < fEntries.size(); at += kEntry)
            if (Number(fEntries, at, 4) == tag) return fEntries.substr(at, kEntry);
        return {};
    }
    std::string_view DataOf(std::string_view entry) const {
        const uint64_t offset = Number(entry, 8, 4);
        return offset < fData.size() ? fData.substr(offset) : std::string_view();
    }
    template <typename T>
    TFact<T> Absent(std::string_view entry) const {
        return TFact<T>::Missing(entry.empty() ? EAbsence::eNotPresent : EAbsence::eNotSupported, fSource);
    }

    const std::string& fSource;
    std::string_view fEntries, fData;
};

// As rpm writes it: "1:2.3-4" is epoch 1, version 2.3 and release 4.
TFact<std::string> VersionOf(const TRpmHeader& header) {
    const std::string release = header.Text(eTagRelease).ValueOr("");
    const uint64_t epoch = header.Integer(eTagEpoch).ValueOr(0);
    return header.Text(eTagVersion).Map([&](const std::string& version) {
        return std::optional((epoch != 0 ? std::to_string(epoch) + ':' : "") + version +
                             (release.empty() ? "" : '-' + release));
    });
}

// "zlib (1.3-5)" of "zlib-1.3-5.src.rpm": the version is told if it is not the package's, as dpkg does. Nothing if name
// and version are the package's.
TFact<std::string> SourceOf(const TRpmHeader& header, const std::string& name) {
    TFact<std::string> file = header.Text(eTagSourceRpm);
    if (!file) return file;
    const std::string text = file->substr(0, std::min(file->rfind(".src.rpm"), file->rfind(".nosrc.rpm")));
    const size_t release = text.rfind('-'), version = release == 0 ? release : text.rfind('-', release - 1);
    if (release == std::string::npos || version == std::string::npos) return file;
    const std::string own = header.Text(eTagVersion).ValueOr("") + '-' + header.Text(eTagRelease).ValueOr(""),
                      its = text.substr(version + 1);
    file.value = text.substr(0, version) + (its == own ? "" : " (" + its + ')');
    if (*file.value == name) file.value.reset();
    return file;
}

// What the packager did not fill in.
TFact<std::string> GroupOf(const TRpmHeader& header) {
    TFact<std::string> group = header.Text(eTagGroup);
    if (group && *group == "Unspecified") group.value.reset();
    return group;
}

TPackageSource ReadDataBase(const TSystemRoot& root, const std::string& path) {
    TPackageSource found;
    bool isDamaged = false;
    found.listing = QuerySqlite(root, path, "SELECT blob FROM Packages", [&](const TSqliteRow& row) {
        TPackage package = ParseRpmHeader(row.Bytes(0), path);
        isDamaged = isDamaged || package.name.empty();
        if (!package.name.empty() && package.name != kPublicKey) found.packages.push_back(std::move(package));
    });
    if (found.listing && isDamaged) found.listing = TListing::Missing(EAbsence::eReadError, path);
    return found;
}

}  // namespace

TPackage ParseRpmHeader(std::string_view bytes, const std::string& source) {
    const TRpmHeader header(bytes, source);
    TPackage package;
    package.format = eRpm;
    package.name = header.Text(eTagName).ValueOr("");
    package.id = header.Text(eTagArchitecture).ValueOr("");
    package.version = VersionOf(header);
    const TFact<std::string> vendor = header.Text(eTagVendor);
    package.maintainer = vendor ? vendor : header.Text(eTagPackager);
    package.section = GroupOf(header);
    package.source = SourceOf(header, package.name);
    package.summary = header.Text(eTagSummary);
    const TFact<uint64_t> size = header.Integer(eTagLongSize);
    package.installedSize = size ? size : header.Integer(eTagSize);
    package.installDate =
        header.Integer(eTagInstallTime).Map([](uint64_t time) { return std::optional(static_cast<int64_t>(time)); });
    package.status = TFact<uint16_t>::Of(eInstalled, source);
    return package;
}

// One of the folders is often a link to the other.
TPackageSource ReadRpm(const TSystemRoot& root) {
    for (const std::string folder : kFolders) {
        const std::string path = folder + "/rpmdb.sqlite";
        TPackageSource found = ReadDataBase(root, path);
        if (found.listing || found.listing.absence != EAbsence::eNotPresent) return found;
        for (const char* older : kOlderForms)
            if (root.Exists(folder + older)) return WithoutPackages(EAbsence::eNotSupported, folder + older);
    }
    return {};
}
