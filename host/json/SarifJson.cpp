#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>

#include "check/Findings.h"
#include "json/Json.h"
#include "json/JsonValues.h"

namespace {

// A path as a URI: an absolute one with "file://" in front, a relative one relative to the current folder.
std::string UriOf(const std::string& path) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const std::string kept = "-._~/";
    std::string uri = std::filesystem::path(path).is_absolute() ? "file://" : "";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && (std::isalnum(byte) != 0 || kept.find(c) != std::string::npos))
            uri += c;
        else
            uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return uri;
}

// FNV-1a
std::string HashOf(const std::string& text) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

/// Writes findings in the Static Analysis Results Interchange Format.
class TSarif {
public:
    explicit TSarif(TOutput& output) : fJson(output) {}

    void Write(const TFindings& findings) {
        fJson.StartObject();
        WriteText(fJson, "$schema",
                  "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json");
        WriteText(fJson, "version", "2.1.0");
        WriteArray("runs", [&] {
            fJson.StartObject();
            WriteObject("tool", [this] { WriteObject("driver", [this] { WriteDriver(); }); });
            WriteText(fJson, "columnKind", "utf16CodeUnits");
            WriteArray("results", [&] {
                for (const TFinding& finding : findings.All()) WriteResult(finding);
            });
            fJson.EndObject();
        });
        fJson.EndObject();
    }

private:
    template <typename TWrite>
    void WriteObject(const char* key, TWrite writeMembers) {
        fJson.Key(key);
        fJson.StartObject();
        writeMembers();
        fJson.EndObject();
    }

    template <typename TWrite>
    void WriteArray(const char* key, TWrite writeElements) {
        fJson.Key(key);
        fJson.StartArray();
        writeElements();
        fJson.EndArray();
    }

    void WriteMessage(const char* key, const std::string& text) {
        WriteObject(key, [&] { WriteText(fJson, "text", text); });
    }

    void WriteDriver() {
        WriteText(fJson, "name", "kyr check");
        WriteText(fJson, "version", KYRCORE_VERSION);
        WriteArray("rules", [this] {
            for (const TRule& rule : AllRules()) WriteRule(rule);
        });
    }

    void WriteRule(const TRule& rule) {
        fJson.StartObject();
        WriteText(fJson, "id", rule.id);
        WriteMessage("shortDescription", rule.title);
        WriteMessage("fullDescription", rule.why);
        WriteObject("defaultConfiguration", [&] { WriteText(fJson, "level", NameOf(rule.level)); });
        fJson.EndObject();
    }

    void WriteResult(const TFinding& finding) {
        fJson.StartObject();
        WriteText(fJson, "ruleId", finding.rule->id);
        WriteText(fJson, "level", NameOf(finding.rule->level));
        WriteMessage("message", finding.text + (finding.remedy.empty() ? "" : ": " + finding.remedy));
        WriteArray("locations", [&] { WriteLocation(finding.place); });
        WriteObject("partialFingerprints", [&] { WriteText(fJson, "kyrCheck/v1", FingerprintOf(finding)); });
        if (!finding.excuse.empty()) WriteArray("suppressions", [&] { WriteSuppression(finding); });
        fJson.EndObject();
    }

    void WriteLocation(const TPlace& place) {
        fJson.StartObject();
        WriteObject("physicalLocation", [&] {
            WriteObject("artifactLocation", [&] { WriteText(fJson, "uri", UriOf(place.file)); });
            if (place.line > 0) WriteObject("region", [&] { WriteNumber("startLine", place.line); });
        });
        if (!place.cls.empty()) WriteArray("logicalLocations", [&] { WriteLogicalLocation(place); });
        fJson.EndObject();
    }

    void WriteNumber(const char* key, size_t number) {
        fJson.Key(key);
        fJson.Json(std::to_string(number));
    }

    void WriteLogicalLocation(const TPlace& place) {
        fJson.StartObject();
        WriteText(fJson, "fullyQualifiedName", place.cls + (place.property.empty() ? "" : "." + place.property));
        fJson.EndObject();
    }

    void WriteSuppression(const TFinding& finding) {
        fJson.StartObject();
        WriteText(fJson, "kind", finding.isExcusedInFile ? "inSource" : "external");
        WriteText(fJson, "justification", finding.excuse);
        fJson.EndObject();
    }

    // The same when lines move: rule, class and property, or the file's name where there is no class; and which of the
    // findings it is that have all that in common.
    std::string FingerprintOf(const TFinding& finding) {
        const TPlace& place = finding.place;
        const std::string where = place.cls.empty() ? std::filesystem::path(place.file).filename().string() : place.cls;
        const std::string hash = HashOf(std::string(finding.rule->id) + '\n' + where + '\n' + place.property);
        return hash + ':' + std::to_string(++fSame[place.file + '\n' + hash]);
    }

    TJsonWriter fJson;
    std::map<std::string, size_t> fSame;
};

}  // namespace

void WriteSarif(const TFindings& findings, TOutput& output) { TSarif(output).Write(findings); }
