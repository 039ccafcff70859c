#include "DataPlugin.h"

#include <exception>

namespace {

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

kyrPluginInfo GetInfo(kyrPluginHandle) { return {gName, KYRCORE_VERSION, "1.0", kyrPluginDataCollector, 0}; }

void LogAbsence(kyrLogSeverity severity, const char* className, EAbsence absence, const std::string& source) {
    const std::string text = std::string(className) + ": " + AbsenceText(absence) + ": " + source;
    kyrWriteLog(gPlugin, severity, text.c_str());
}

}  // namespace

void LogAbsentClass(const char* className, EAbsence absence, const std::string& source) {
    const bool isFailure = absence == EAbsence::eNoPermission || absence == EAbsence::eReadError;
    LogAbsence(isFailure ? kyrLogError : kyrLogWarning, className, absence, source);
}

void LogMissingClass(const char* className, EAbsence absence, const std::string& source) {
    LogAbsence(kyrLogError, className, absence, source);
}

void RegisterDataPlugin(const char* name, kyrStatusCode (*getData)(kyrIOHandle, const TWantedClasses&)) {
    gName = name;
    gGetData = getData;
    kyrPluginCallbacks callbacks = {nullptr, DoNothing, DoNothing, GetData, GetInfo, DoNothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
}
