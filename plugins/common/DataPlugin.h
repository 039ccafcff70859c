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

/// Logs a warning. One that begins with the name of a class and a colon is kept beside that class.
void LogWarning(const std::string& text);

/// Reports that a source of the class is missing, as a MOLTA_MissingSource: what was not found there may exist.
kyrStatusCode ReportMissingSource(kyrIOHandle handle, const char* className, const TListing& source);

/// How one class is reported.
template <typename TFacts>
struct TClassReport {
    const char* className;
    /// Reports its instances.
    kyrStatusCode (*report)(kyrIOHandle handle, const TFacts& facts);
    /// What the instances are found by, each with whether it could be read. Those of an association are the sources of
    /// the classes that it ties.
    std::vector<TListing (*)(const TFacts& facts)> sources;
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
            return IsWanted(entry.className, wanted) ? Report(handle, entry) : kyrStatusOK;
        });
    }

    kyrStatusCode Report(kyrIOHandle handle, const TClassReport<TFacts>& entry) const {
        const kyrStatusCode status = ReportEach(entry.sources, [&](const auto& sourceOf) {
            const TListing source = sourceOf(*fFacts);
            return source ? kyrStatusOK : ReportMissingSource(handle, entry.className, source);
        });
        return status == kyrStatusOK ? entry.report(handle, *fFacts) : status;
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
