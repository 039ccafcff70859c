#include "OlderRelease.h"

namespace {

struct TRelease {
    std::string name;
    std::string id;
    std::string family;  ///< ids of the distributions that it derives from
    std::string version;
    std::string codename;
    std::string caption;
};

using TParser = std::optional<TRelease> (*)(const TSystemRoot& root, std::string_view text);

struct TDistribution {
    std::string_view start;  ///< of the name
    const char* id;
};

// The name in the file begins with what is left here, and os-release of later releases has the id.
constexpr TDistribution kRedHatFamily[] = {
    {"Red Hat", "rhel"},
    {"CentOS", "centos"},
    {"Fedora", "fedora"},
    {"Scientific", "scientific"},
    {"Oracle", "ol"},
    {"Enterprise Linux", "ol"},
    {"Amazon", "amzn"},
    {"CloudLinux", "cloudlinux"},
    {"Rocky", "rocky"},
    {"AlmaLinux", "almalinux"},
    {"XenServer", "xenenterprise"},
    {"Mandriva", "mandriva"},
    {"Mageia", "mageia"},
    {"ROSA", "rosa"},
};

std::string IdIn(std::string_view name) {
    for (const TDistribution& entry : kRedHatFamily)
        if (StartsWith(name, entry.start)) return entry.id;
    return "";
}

// The first line that says anything.
std::string_view FirstLine(std::string_view text) {
    for (const std::string_view line : Lines(text))
        if (!Trim(line).empty()) return Trim(line);
    return "";
}

// "Final" of "CentOS release 6.10 (Final)".
std::string_view InParentheses(std::string_view line) {
    const size_t start = line.find('('), end = line.find(')', start);
    return end == std::string_view::npos ? "" : Trim(line.substr(start + 1, end - start - 1));
}

// The part of a version such as "6.10" that a text begins with.
std::string_view VersionIn(std::string_view text) {
    const std::string_view word = text.substr(0, text.find_first_of(" \t"));
    return !word.empty() && word[0] >= '0' && word[0] <= '9' ? word : "";
}

// "Red Hat Enterprise Linux Server release 6.9 (Santiago)"
std::optional<TRelease> ParseRedHat(const TSystemRoot&, std::string_view text) {
    constexpr std::string_view kWord = " release ";
    const std::string_view line = FirstLine(text);
    const size_t end = line.find(kWord);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view rest = Trim(line.substr(end + kWord.size()));
    TRelease release;
    release.name = line.substr(0, end);
    release.id = IdIn(line);
    release.family = "rhel fedora";
    release.version = VersionIn(rest);
    release.codename = InParentheses(rest);
    release.caption = line;
    return release;
}

// The value of "KEY = value" or "KEY=value".
std::string AssignedIn(std::string_view text, std::string_view key) {
    for (const std::string_view line : Lines(text)) {
        const size_t sign = line.find('=');
        if (sign != std::string_view::npos && Trim(line.substr(0, sign)) == key)
            return std::string(Trim(line.substr(sign + 1)));
    }
    return "";
}

const char* SuseId(std::string_view line) {
    if (StartsWith(line, "openSUSE")) return "opensuse";
    if (line.find("Enterprise Desktop") != std::string_view::npos) return "sled";
    return line.find("Enterprise") != std::string_view::npos ? "sles" : "suse";
}

// "SUSE Linux Enterprise Server 11 (x86_64)", then lines such as "VERSION = 11" and "PATCHLEVEL = 4".
std::optional<TRelease> ParseSuse(const TSystemRoot&, std::string_view text) {
    const std::string_view line = FirstLine(text), title = Trim(line.substr(0, line.find('(')));
    TRelease release;
    release.name = Trim(title.substr(0, title.find_first_of("0123456789")));
    release.id = SuseId(line);
    release.family = "suse";
    release.version = AssignedIn(text, "VERSION");
    if (const std::string patches = AssignedIn(text, "PATCHLEVEL"); !patches.empty() && patches != "0")
        release.version += '.' + patches;
    release.codename = AssignedIn(text, "CODENAME");
    release.caption = line;
    return release;
}

// One word in small letters, as os-release has it.
std::string IdOf(std::string_view name) {
    std::string id;
    for (const char c : name) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) id += c;
        if (c >= 'A' && c <= 'Z') id += static_cast<char>(c - 'A' + 'a');
    }
    return id;
}

std::string UnquotedIn(std::string_view text, std::string_view key) {
    const std::string value = AssignedIn(text, key);
    const bool isQuoted = value.size() > 1 && value.front() == value.back() && (value[0] == '"' || value[0] == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

// Many distributions have the file only to tell which version of the standard they follow.
std::optional<TRelease> ParseLsb(const TSystemRoot& root, std::string_view text) {
    TRelease release;
    release.name = UnquotedIn(text, "DISTRIB_ID");
    if (release.name.empty()) return std::nullopt;
    release.id = IdOf(release.name);
    if (root.Exists("/etc/debian_version")) release.family = "debian";
    release.version = UnquotedIn(text, "DISTRIB_RELEASE");
    release.codename = UnquotedIn(text, "DISTRIB_CODENAME");
    release.caption = UnquotedIn(text, "DISTRIB_DESCRIPTION");
    return release;
}

std::optional<TRelease> Named(std::string name, const char* id, std::string_view version) {
    TRelease release;
    release.caption = std::string(Trim(name + ' ' + std::string(version)));
    release.name = std::move(name);
    release.id = id;
    release.version = VersionIn(version);
    return release;
}

// "3.18.4"
std::optional<TRelease> ParseAlpine(const TSystemRoot&, std::string_view text) {
    return Named("Alpine Linux", "alpine", FirstLine(text));
}

// "Slackware 14.2"
std::optional<TRelease> ParseSlackware(const TSystemRoot&, std::string_view text) {
    const std::string_view line = FirstLine(text);
    return Named("Slackware", "slackware", line.substr(std::min(line.find(' '), line.size() - 1) + 1));
}

// "Gentoo Base System release 2.0.3"
std::optional<TRelease> ParseGentoo(const TSystemRoot&, std::string_view text) {
    const std::string_view line = FirstLine(text);
    return Named("Gentoo", "gentoo", line.substr(line.rfind(' ') + 1));
}

// The file says nothing, and there is no version to tell.
std::optional<TRelease> ParseArch(const TSystemRoot&, std::string_view) { return Named("Arch Linux", "arch", ""); }

// "6.0.10", or "squeeze/sid" before a release.
std::optional<TRelease> ParseDebian(const TSystemRoot&, std::string_view text) {
    return Named("Debian GNU/Linux", "debian", FirstLine(text));
}

struct TFile {
    const char* path;
    TParser parse;
    bool mayBeEmpty;
};

// In this order: a distribution that derives from another has the files of both, its own before those of the other.
constexpr TFile kFiles[] = {
    {"/etc/oracle-release", ParseRedHat, false},   {"/etc/centos-release", ParseRedHat, false},
    {"/etc/fedora-release", ParseRedHat, false},   {"/etc/mageia-release", ParseRedHat, false},
    {"/etc/mandriva-release", ParseRedHat, false}, {"/etc/redhat-release", ParseRedHat, false},
    {"/etc/system-release", ParseRedHat, false},   {"/etc/SuSE-release", ParseSuse, false},
    {"/etc/alpine-release", ParseAlpine, false},   {"/etc/slackware-version", ParseSlackware, false},
    {"/etc/gentoo-release", ParseGentoo, false},   {"/etc/openwrt_release", ParseLsb, false},
    {"/etc/lsb-release", ParseLsb, false},         {"/etc/arch-release", ParseArch, true},
    {"/etc/debian_version", ParseDebian, false},
};

void Append(const char* key, const std::string& value, std::string& text) {
    if (value.empty()) return;
    text.append(key).append("=\"");
    for (const char c : value) text.append(c == '"' || c == '\\' ? "\\" : "").append(1, c);
    text += "\"\n";
}

std::string TextOf(const TRelease& release) {
    std::string text;
    Append("NAME", release.name, text);
    Append("ID", release.id, text);
    Append("ID_LIKE", release.family, text);
    Append("VERSION_ID", release.version, text);
    Append("VERSION_CODENAME", release.codename, text);
    Append("PRETTY_NAME", release.caption.empty() ? release.name : release.caption, text);
    return text;
}

std::optional<std::string> TextIn(const TSystemRoot& root, const TFile& file, const std::string& content) {
    if (FirstLine(content).empty() && !file.mayBeEmpty) return std::nullopt;
    const std::optional<TRelease> release = file.parse(root, content);
    return release ? std::optional(TextOf(*release)) : std::nullopt;
}

}  // namespace

TFact<std::string> ReadOlderRelease(const TSystemRoot& root) {
    TFact<std::string> none;
    for (const TFile& file : kFiles) {
        const TFact<std::string> content = root.ReadFile(file.path, 4096);
        TFact<std::string> text = content.Map([&](const auto& lines) { return TextIn(root, file, lines); });
        if (text) return text;
        if (IsUnreadable(text)) none = std::move(text);
    }
    return none;
}
