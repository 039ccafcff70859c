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

/// The classes that a data callback asks for.
using TWantedClasses = std::vector<std::string_view>;

/// Registers a plugin whose data callback is the function. To be called once in a library, from the constructor of a
/// static object, while the core loads it.
void RegisterDataPlugin(const char* name, kyrStatusCode (*getData)(kyrIOHandle, const TWantedClasses&));

/// Logs why a class has no instances: an error if its source could not be read, a warning if it is absent or not
/// supported.
void LogAbsentClass(const char* className, EAbsence absence, const std::string& source);
template <typename T>
void LogIfAbsent(const char* className, const TFact<T>& list) {
    if (!list) LogAbsentClass(className, list.absence, list.source);
}

/// Logs the same as an error in any case, for a class that has an instance on every machine: the class is not complete.
void LogMissingClass(const char* className, EAbsence absence, const std::string& source);
template <typename T>
void LogIfMissing(const char* className, const TFact<T>& fact) {
    if (!fact) LogMissingClass(className, fact.absence, fact.source);
}

/// The function that reports the instances of one class.
template <typename TFacts>
struct TClassReport {
    const char* className;
    kyrStatusCode (*report)(kyrIOHandle handle, const TFacts& facts);
};

/// A plugin that reads all its facts and then reports them class by class. The core calls it once for ordinary classes
/// and once for associations. Both calls report the same reading of the machine, so that associations fit the
/// instances; it is read again when a class is asked for a second time.
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
            return IsWanted(entry.className, wanted) ? entry.report(handle, *fFacts) : kyrStatusOK;
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
