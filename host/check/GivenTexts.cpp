#include "check/GivenTexts.h"

#include <fstream>
#include <set>
#include <string_view>

#include "base/Text.h"
#include "check/DocumentRules.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kMostLines = 1'000'000;

/// Reads the calls of one plugin from the lines of the log.
class TCalls {
public:
    TCalls(const TReported& reported, const std::string& plugin, TFindings& findings)
        : fReported(reported), fStart("KYR_" + plugin + ": [Verbose] "), fFindings(findings) {}

    void Read(const std::string& line) {
        if (!StartsWith(line, fStart) || line.back() != ')') return;
        const std::string call = line.substr(fStart.size(), line.size() - fStart.size() - 1);
        if (StartsWith(call, kAddProperty)) ReadProperty(call.substr(std::string_view(kAddProperty).size()));
        if (StartsWith(call, kAddClass)) fClass = FindClass(call.substr(std::string_view(kAddClass).size()));
    }

private:
    static constexpr const char* kAddClass = "kyrAddClass(";
    static constexpr const char* kAddProperty = "kyrAddProperty(";
    static constexpr const char* kValue = ", value=";

    const TCIMClass* FindClass(const std::string& name) const {
        try {
            return fReported.container.FindClass(name);
        } catch (const TKYRException&) {
            return nullptr;  // it is no name at all, which the core has refused
        }
    }

    const TCIMPropertyDecl* FindProperty(const std::string& name) const {
        try {
            return fClass == nullptr ? nullptr : fClass->FindPropertyDecl(name);
        } catch (const TKYRException&) {
            return nullptr;
        }
    }

    // "Available, value=lots"
    void ReadProperty(const std::string& call) {
        const size_t end = call.find(kValue);
        const TCIMPropertyDecl* const property = end == std::string::npos ? nullptr : FindProperty(call.substr(0, end));
        if (property == nullptr || property->IsArray()) return;
        const std::string type = property->GetType().ToString();
        const std::string text = call.substr(end + std::string_view(kValue).size());
        const std::string fault = FaultOfValue(type, text);
        if (!fault.empty()) Tell(*property, type, Quoted(text), fault);
    }

    void Tell(const TCIMPropertyDecl& property, const std::string& type, const std::string& text,
              const std::string& fault) {
        const std::string name = fClass->GetName() + "." + property.GetName();
        if (!fTold.insert(name).second) return;
        fFindings.Add("R16", {fReported.file, 0, fClass->GetName(), property.GetName()},
                      name + ": " + text + " was given for a " + type + ", but " + fault,
                      "give a value of the type, or leave it out and say why in UnavailableValues");
    }

    const TReported& fReported;
    const std::string fStart;
    TFindings& fFindings;
    const TCIMClass* fClass = nullptr;  // of the open instance
    std::set<std::string> fTold;
};

}  // namespace

void CheckGivenTexts(const TReported& reported, const std::string& logFile, TFindings& findings) {
    for (const TCIMInstance* plugin : reported.plugins) {
        TCalls calls(reported, TextOf(*plugin, "Name"), findings);
        std::ifstream file(logFile);
        std::string line;
        for (size_t count = 0; count < kMostLines && std::getline(file, line); ++count) calls.Read(line);
    }
}
