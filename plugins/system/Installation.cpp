#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>

#include "OsRelease.h"
#include "SystemFacts.h"
#include "UnitFiles.h"

namespace {

using TText = TFact<std::string>;

/// What installers of Debian, Ubuntu, and Red Hat and its derivatives leave behind as the last thing that they do.
constexpr const char* kInstallerTraces[] = {"/var/log/installer/status", "/var/log/installer/syslog",
                                            "/var/log/installer/installer-journal.txt", "/var/log/installer/media-info",
                                            "/var/log/anaconda/anaconda.log"};

// Images are not installed where they run, and have no trace of an installer. The age of the root file system would be
// that of the image.
TFact<int64_t> ReadInstallDate(const TSystemRoot& root) {
    using TDate = TFact<int64_t>;
    for (const char* path : kInstallerTraces) {
        struct stat status;
        if (stat(root.Locate(path).c_str(), &status) == 0) return TDate::Of(status.st_mtim.tv_sec, path);
        if (errno != ENOENT) return TDate::Missing(AbsenceOf(errno), path);
    }
    return TDate::Missing(EAbsence::eNotPresent, "/var/log");
}

// The part of "../usr/share/zoneinfo/Europe/Berlin" behind the folder.
std::optional<std::string> ZoneName(const std::string& link) {
    constexpr std::string_view kFolder = "zoneinfo/";
    const size_t at = link.rfind(kFolder);
    const std::string name = at == std::string::npos ? "" : link.substr(at + kFolder.size());
    return name.empty() ? std::nullopt : std::optional(name);
}

TText ReadValue(const TSystemRoot& root, const char* file, const char* key) {
    return FindOsReleaseValue(root.ReadFile(file), key);
}

// The last file is that of Red Hat and its derivatives before release 7.
TText ReadTimeZone(const TSystemRoot& root) {
    TText zone = root.ReadLink("/etc/localtime").Map(ZoneName);
    if (!zone) zone = Otherwise(zone, root.ReadText("/etc/timezone"));
    return zone ? zone : Otherwise(zone, ReadValue(root, "/etc/sysconfig/clock", "ZONE"));
}

// The user's own time zone is not that of the machine.
TFact<int16_t> AskTimeZone() {
    constexpr const char* kCall = "localtime(3)";
    if (std::getenv("TZ") != nullptr) return TFact<int16_t>::Missing(EAbsence::eNotSupported, kCall);
    const time_t now = time(nullptr);
    struct tm local {};
    localtime_r(&now, &local);
    return TFact<int16_t>::Of(static_cast<int16_t>(local.tm_gmtoff / 60), kCall);
}

TText ReadLocale(const TSystemRoot& root) {
    TText locale = ReadValue(root, "/etc/locale.conf", "LANG");
    for (const char* file : {"/etc/default/locale", "/etc/sysconfig/i18n"})
        if (!locale) locale = Otherwise(locale, ReadValue(root, file, "LANG"));
    return locale;
}

struct TInitSystem {
    const char* folder;
    const char* name;
};

/// Folders that init systems make when they start.
constexpr TInitSystem kInitSystems[] = {
    {"/run/systemd/system", "systemd"}, {"/run/openrc", "OpenRC"}, {"/run/runit", "runit"}};

TText ReadInitSystem(const TSystemRoot& root) {
    for (const TInitSystem& init : kInitSystems)
        if (root.Exists(init.folder)) return TText::Of(init.name, init.folder);
    return TText::Missing(EAbsence::eNotPresent, "/run");
}

TText ReadDefaultTarget(const TSystemRoot& root) {
    TText target;
    for (const char* folder : {kAdministratorUnits, kVendorUnits, kOldVendorUnits})
        if (!target) target = Otherwise(target, root.ReadLinkName(std::string(folder) + "/default.target"));
    return target;
}

}  // namespace

void ReadInstallation(const TSystemRoot& root, TSystemFacts& facts) {
    // A recorded machine has no present time, on which its summer time depends.
    if (root.IsRunningMachine()) facts.currentTimeZone = AskTimeZone();
    facts.installDate = ReadInstallDate(root);
    facts.timeZone = ReadTimeZone(root);
    facts.locale = ReadLocale(root);
    facts.initSystem = ReadInitSystem(root);
    if (facts.initSystem.ValueOr("") == "systemd") facts.defaultTarget = ReadDefaultTarget(root);
}
