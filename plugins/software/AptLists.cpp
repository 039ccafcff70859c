#include "AptLists.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>

#include "Fields.h"
#include "Inflate.h"

namespace {

constexpr size_t kMostFile = size_t{512} << 20, kMostText = size_t{1} << 30;
/// No paragraph is longer; a list that has none in so many bytes is none.
constexpr size_t kMostParagraph = 4 << 20;
/// The fields stand before the checksums.
constexpr size_t kReleaseFields = 8192;
constexpr std::string_view kStart = "Package: ", kNext = "\n\nPackage: ";

std::optional<int> MonthNamed(std::string_view name) {
    constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto found = std::find(kMonths.begin(), kMonths.end(), name);
    return found == kMonths.end() ? std::nullopt : std::optional(static_cast<int>(found - kMonths.begin()));
}

// "Fri, 20 Nov 2026 00:12:41 UTC"; the time zone is always this.
std::optional<int64_t> ParseDate(std::string_view text) {
    const std::vector<std::string_view> words = Split(text, ' ');
    if (words.size() < 5) return std::nullopt;
    const std::vector<std::string_view> clock = Split(words[4], ':');
    const auto month = MonthNamed(words[2]);
    if (clock.size() != 3 || !month) return std::nullopt;
    std::tm time = {};
    time.tm_mon = *month;
    time.tm_mday = ParseNumber<int>(words[1]).value_or(0);
    time.tm_year = ParseNumber<int>(words[3]).value_or(0) - 1900;
    time.tm_hour = ParseNumber<int>(clock[0]).value_or(-1);
    time.tm_min = ParseNumber<int>(clock[1]).value_or(-1);
    time.tm_sec = ParseNumber<int>(clock[2]).value_or(-1);
    const bool isSound = time.tm_mday > 0 && time.tm_mday <= 31 && time.tm_year >= 70 && time.tm_year < 8000 &&
                         time.tm_hour >= 0 && time.tm_hour < 24 && time.tm_min >= 0 && time.tm_sec >= 0;
    return isSound ? std::optional<int64_t>(timegm(&time)) : std::nullopt;
}

bool IsList(std::string_view name) {
    const size_t at = name.rfind("_Packages");
    // "_Packages.diff_Index" lists differences to earlier versions of the list.
    return at != std::string_view::npos && (at + 9 == name.size() || name[at + 9] == '.') &&
           !EndsWith(name, ".FAILED") && !EndsWith(name, ".reverify") &&
           name.find(".diff_Index", at) == std::string_view::npos;
}

/// Gives the packages of a text that comes in pieces.
class TPackageScanner {
public:
    explicit TPackageScanner(const TTakePackage& take) : fTake(take) {}

    // False if it goes on for too long.
    bool Add(std::string_view piece) {
        fTotal += piece.size();
        if (fRest.empty()) {
            fRest = Scan(piece);
        } else {
            fRest += piece;
            fRest = std::string(Scan(fRest));
        }
        return fTotal <= kMostText && fRest.size() <= kMostParagraph;
    }
    void Finish() { Take(fRest); }

private:
    // What is behind the last paragraph that is whole.
    std::string_view Scan(std::string_view text) const {
        while (true) {
            const void* const next = memmem(text.data(), text.size(), kNext.data(), kNext.size());
            if (next == nullptr) return text;
            const auto end = static_cast<size_t>(static_cast<const char*>(next) - text.data());
            Take(text.substr(0, end));
            text.remove_prefix(end + 2);
        }
    }
    void Take(std::string_view paragraph) const {
        if (paragraph.substr(0, kStart.size()) != kStart) return;
        fTake(Trim(paragraph.substr(kStart.size(), paragraph.find('\n') - kStart.size())), paragraph);
    }

    const TTakePackage& fTake;
    std::string fRest;
    size_t fTotal = 0;
};

}  // namespace

TAptArchive ParseAptRelease(std::string_view text, const std::string& source) {
    const std::string signature = "-----BEGIN PGP SIGNED MESSAGE-----";
    if (text.substr(0, signature.size()) == signature) TakeParagraph(text);
    const TFields fields = ParseFields(text);
    const auto field = [&](const char* name) { return FieldOf(fields, name, source).ValueOr(""); };
    TAptArchive archive;
    // Some give the security updates of a release its codename: "noble" in the suite "noble-security".
    archive.suite = field("Suite");
    if (const std::string codename = field("Codename"); archive.suite.rfind(codename, 0) != 0) archive.suite = codename;
    archive.date = FieldOf(fields, "Date", source).Map(ParseDate);
    archive.isSecurity = field("Label") == "Debian-Security" || EndsWith(field("Suite"), "-security") ||
                         EndsWith(field("Codename"), "-security");
    archive.isOnRequest = field("ButAutomaticUpgrades") == "yes";
    archive.isManual = field("NotAutomatic") == "yes" && !archive.isOnRequest;
    return archive;
}

std::vector<TAptList> FindAptLists(const TSystemRoot& root, const std::vector<std::string>& names) {
    std::vector<std::pair<std::string, TAptArchive>> archives;
    for (const std::string ending : {"InRelease", "Release"})
        for (const std::string& name : names)
            if (EndsWith(name, '_' + ending)) {
                const std::string path = kAptLists + ('/' + name);
                archives.emplace_back(name.substr(0, name.size() - ending.size()),
                                      ParseAptRelease(root.ReadFile(path, kReleaseFields).ValueOr(""), path));
            }
    std::vector<TAptList> lists;
    for (const std::string& name : names) {
        if (!IsList(name)) continue;
        const auto archive = std::find_if(archives.begin(), archives.end(),
                                          [&name](const auto& pair) { return name.rfind(pair.first, 0) == 0; });
        lists.push_back({kAptLists + ('/' + name), archive == archives.end() ? TAptArchive() : archive->second});
    }
    return lists;
}

TListing ReadAptList(const TSystemRoot& root, const std::string& path, const TTakePackage& take) {
    const auto failed = [&path](EAbsence absence) { return TListing::Missing(absence, path); };
    const TFact<std::string> file = root.ReadFile(path, kMostFile);
    if (!file) return failed(file.absence);
    TPackageScanner scanner(take);
    bool isShort = true;
    const TTakePiece add = [&](std::string_view piece) { return isShort = scanner.Add(piece); };
    bool isSound = true;
    if (EndsWith(path, ".lz4"))
        isSound = InflateLz4(*file, add);
    else if (EndsWith(path, ".gz"))
        isSound = InflateGzip(*file, add);
    else if (EndsWith(path, "_Packages"))
        add(*file);
    else
        return failed(EAbsence::eNotSupported);
    scanner.Finish();
    return isSound && isShort ? TListing::Of(true, path) : failed(EAbsence::eReadError);
}

std::string_view AptField(std::string_view paragraph, std::string_view name) {
    const std::string start = '\n' + std::string(name) + ": ";
    const size_t at = paragraph.find(start);
    if (at == std::string_view::npos) return {};
    const size_t value = at + start.size();
    return Trim(paragraph.substr(value, paragraph.find('\n', value) - value));
}
