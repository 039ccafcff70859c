#ifndef KYR_PLUGINS_COMMON_DATAPLUGIN_H
#define KYR_PLUGINS_COMMON_DATAPLUGIN_H

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "InstanceReport.h"
#include "SystemRoot.h"
#include "kyr/kyrPlugin.h"

/// What a data call asks for.
using TWantedClasses = std::vector<std::string_view>;

/// Registers a plugin whose data calls go to the function; once in a library, from a static object's constructor.
void RegisterDataPlugin(const char* name, kyrStatusCode (*getData)(kyrIOHandle, const TWantedClasses&));

/// Logs why there are no instances of a class, if what they were to be read from could not be had. An error, unless
/// there is just nothing of the kind.
void LogAbsentClass(const char* className, EAbsence absence, const std::string& source);
template <typename T>
void LogIfAbsent(const char* className, const TFact<T>& list) {
    if (!list) LogAbsentClass(className, list.absence, list.source);
}

/// Reports the instances of one class; first logs why there are none, if there is a listing that tells.
template <typename TFacts>
struct TClassReport {
    const char* className;
    kyrStatusCode (*report)(kyrIOHandle handle, const TFacts& facts);
    TListing TFacts::*listing = nullptr;
};

/// A plugin that reads all its facts and then reports them class by class. The core asks for ordinary classes and for
/// associations by one call each: what was read for the first serves the second, and is read anew when a class is
/// asked for again.
template <typename TFacts>
class TDataPlugin {
public:
    TDataPlugin(const char* name, TFacts (*read)(const TSystemRoot&), std::vector<TClassReport<TFacts>> reports)
        : fRead(read), fReports(std::move(reports)) {
        fgPlugin = this;
        RegisterDataPlugin(
            name, [](kyrIOHandle handle, const TWantedClasses& wanted) { return fgPlugin->GetData(handle, wanted); });
    }

private:
    kyrStatusCode GetData(kyrIOHandle handle, const TWantedClasses& wanted) {
        for (const std::string_view name : wanted)
            if (!fReported.emplace(name).second) fFacts.reset();
        if (!fFacts) fFacts = fRead(TSystemRoot::FromEnvironment());
        return ReportEach(fReports, [&](const TClassReport<TFacts>& entry) {
            if (!IsWanted(entry.className, wanted)) return kyrStatusOK;
            if (entry.listing) LogIfAbsent(entry.className, *fFacts.*entry.listing);
            return entry.report(handle, *fFacts);
        });
    }

    static bool IsWanted(std::string_view className, const TWantedClasses& wanted) {
        return std::find(wanted.begin(), wanted.end(), className) != wanted.end();
    }

    inline static TDataPlugin* fgPlugin = nullptr;
    TFacts (*fRead)(const TSystemRoot&);
    std::vector<TClassReport<TFacts>> fReports;
    std::optional<TFacts> fFacts;
    std::set<std::string, std::less<>> fReported;
};

#endif
