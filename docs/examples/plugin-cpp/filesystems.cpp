// A plugin in C++: reports the types of file systems that the kernel knows.
#include <fstream>
#include <string>

#include "kyr/kyrPlugin.h"

namespace {

constexpr const char* kFile = "/proc/filesystems";

kyrPluginHandle gPlugin;

// A line is "nodev\tproc" or "\text4".
kyrStatusCode ReportType(kyrIOHandle handle, const char* className, const std::string& line) {
    const size_t tab = line.find('\t');
    kyrStatusCode status = kyrAddClass(handle, className);
    if (status == kyrStatusOK) status = kyrAddStringProperty(handle, "Name", line.substr(tab + 1).c_str());
    if (status == kyrStatusOK) status = kyrAddBooleanProperty(handle, "NeedsDevice", tab == 0);
    return status;
}

kyrStatusCode ReportTypes(kyrIOHandle handle, const char* className) {
    std::ifstream file(kFile);
    if (!file) kyrWriteLog(gPlugin, kyrLogError, (std::string(className) + ": cannot read " + kFile).c_str());
    kyrStatusCode status = kyrStatusOK;
    for (std::string line; status == kyrStatusOK && std::getline(file, line);)
        status = ReportType(handle, className, line);
    return status;
}

// No exception may leave an entry.
kyrStatusCode GetData(kyrPluginHandle, kyrIOHandle handle, const char** classNames, uint32_t count) try {
    kyrStatusCode status = kyrStatusOK;
    for (uint32_t i = 0; i < count && status == kyrStatusOK; ++i) status = ReportTypes(handle, classNames[i]);
    return status;
} catch (...) {
    return kyrStatusFail;
}

kyrPluginInfo GetInfo(kyrPluginHandle) { return {"filesystems", "1.0", "1.0", kyrPluginDataCollector, 0}; }

kyrStatusCode Nothing(kyrPluginHandle) { return kyrStatusOK; }

__attribute__((constructor)) void Register() {
    kyrPluginCallbacks callbacks = {nullptr, Nothing, Nothing, GetData, GetInfo, Nothing};
    kyrRegisterPlugin(&callbacks, &gPlugin);
}

}  // namespace
