#include "DataPlugin.h"

#include <exception>

namespace {

constexpr const char* kMissingSource = "MOLTA_MissingSource";

const char* gName = nullptr;
kyrStatusCode (*gGetData)(kyrIOHandle, const TWantedClasses&) = nullptr;
kyrPluginHandle gPlugin = nullptr;

kyrStatusCode DoNothing(kyrPluginHandle) { return kyrStatusOK; }

// The core calls this through the C interface, which lets no exception through.
kyrStatusCode GetData(kyrPluginHandle plugin, kyrIOHandle handle, const char** classNames, uint32_t count) {
    try {
        return gGetData(handle, TWantedClasses(classNames, classNames + count));
    } catch (const std::exception& e) {
        kyrWriteLog(plugin, kyrLogError, e.what());
        return kyrStatusFail;
    }
}

kyrPluginInfo GetInfo(kyrPluginHandle) {
    return {gName, KYRCORE_VERSION, KYR_INTERFACE_VERSION, kyrPluginDataCollector, 0};
}

// Numbers of the ValueMap of MOLTA_MissingSource.Absence, in the order of EAbsence.
uint16_t NumberOf(EAbsence absence) { return static_cast<uint16_t>(static_cast<int>(absence) + 1); }

}  // namespace

void LogWarning(const std::string& text) { kyrWriteLog(gPlugin, kyrLogWarning, text.c_str()); }

kyrStatusCode ReportMissingSource(kyrIOHandle handle, const char* className, const TListing& source) {
    if (!IsKnownClass(handle, kMissingSource)) return kyrStatusOK;
    const bool isPath = source.source.compare(0, 1, "/") == 0;
    const std::string place = isPath ? TSystemRoot::FromEnvironment().FindObstacle(source.source) : source.source;
    TInstanceReport report(handle, {kMissingSource, {{"ClassName", className}, {"Source", place}}});
    report.Set("Absence", NumberOf(source.absence));
    return report.Finish();
}

void RegisterDataPlugin(const char* name, kyrStatusCode (*getData)(kyrIOHandle, const TWantedClasses&)) {
    gName = name;
    gGetData = getData;
    kyrPluginCallbacks callbacks = {nullptr, DoNothing, DoNothing, GetData, GetInfo, DoNothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
}
