#ifndef KYR_PLUGINS_COMMON_INSTANCEREPORT_H
#define KYR_PLUGINS_COMMON_INSTANCEREPORT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "BusDevice.h"
#include "Fact.h"
#include "kyr/kyrPlugin.h"

/// Names an instance: its class and the values of its keys, which are strings.
struct TPath {
    std::string className;
    std::vector<std::pair<const char*, std::string>> keys;
};

/// The computer system that the core has collected; while there is none, one of the name that the kernel knows.
TPath ComputerSystem();
/// A class whose keys are those of CIM_LogicalDevice.
TPath DevicePath(const std::string& className, const std::string& deviceId);
/// A class whose keys are those of CIM_FileSystem, CIM_Service and CIM_ServiceAccessPoint: a Name within the system.
TPath ScopedPath(const std::string& className, const std::string& name);

/// False for the class of a plugin that is not there. No reference can name it.
bool IsKnownClass(kyrIOHandle handle, const char* className);

/// A moment, in seconds since 1970. Reported in UTC unless there is an offset of local time.
struct TMoment {
    int64_t seconds;
    int32_t offsetMinutes = 0;
};

/// One instance on its way to the core. Properties must have the type that the document declares. The first call of
/// the core that fails is kept, and Finish returns it.
class TInstanceReport {
public:
    TInstanceReport(kyrIOHandle handle, const TPath& path);
    TInstanceReport(kyrIOHandle handle, const char* className);
    TInstanceReport(const TInstanceReport&) = delete;
    TInstanceReport& operator=(const TInstanceReport&) = delete;

    /// The value, with a note where it came from; or a note why there is none.
    template <typename T>
    void Add(const char* property, const TFact<T>& fact) {
        if (fact) Set(property, *fact);
        Note(property, fact.source, fact ? nullptr : AbsenceText(fact.absence));
    }

    void Set(const char* property, bool value);
    void Set(const char* property, uint8_t value);
    void Set(const char* property, uint16_t value);
    void Set(const char* property, uint32_t value);
    void Set(const char* property, uint64_t value);
    void Set(const char* property, int16_t value);
    void Set(const char* property, int32_t value);
    void Set(const char* property, int64_t value);
    void Set(const char* property, double value);  ///< of real32 and real64
    void Set(const char* property, const char* value);
    void Set(const char* property, const std::string& value);
    void Set(const char* property, TMoment value);
    void Set(const char* property, const std::vector<std::string>& value);
    void Set(const char* property, const std::vector<uint16_t>& value);
    void Set(const char* property, const std::vector<uint32_t>& value);
    void Set(const char* property, const TPath& value);  ///< a reference

    /// Adds the notes. The instance is stored when the next one begins or the data call ends.
    kyrStatusCode Finish();

private:
    void Keep(kyrStatusCode status);
    void Note(const char* property, const std::string& source, const char* absence);
    template <typename F, typename T>
    void SetBy(F add, const char* property, T value);
    template <typename T, typename F>
    void SetArray(const char* property, const std::vector<T>& values, F append);

    kyrIOHandle fHandle;
    kyrStatusCode fStatus;
    std::vector<std::string> fSources;
    std::vector<std::string> fUnavailable;
};

/// Calls the function with each item, up to the first that cannot be reported.
template <typename TItems, typename F>
kyrStatusCode ReportEach(const TItems& items, F report) {
    for (const auto& item : items)
        if (const kyrStatusCode status = report(item); status != kyrStatusOK) return status;
    return kyrStatusOK;
}
template <typename TItems, typename F>
kyrStatusCode ReportEach(kyrIOHandle handle, const TItems& items, F report) {
    return ReportEach(items, [&](const auto& item) { return report(handle, item); });
}
/// The same with each item of a list among the facts, as a TClassReport has it. The function may want the facts too.
template <auto kList, auto kReport, typename TFacts>
kyrStatusCode ForEach(kyrIOHandle handle, const TFacts& facts) {
    return ReportEach(facts.*kList, [&](const auto& item) {
        if constexpr (std::is_invocable_v<decltype(kReport), kyrIOHandle, const TFacts&, decltype(item)>)
            return kReport(handle, facts, item);
        else
            return kReport(handle, item);
    });
}

/// An association of two instances.
kyrStatusCode ReportTie(kyrIOHandle handle, const char* className, const char* firstRole, const TPath& first,
                        const char* secondRole, const TPath& second);
/// A CIM_SystemDevice: the device belongs to the computer system. Nothing, while no plugin declares one.
kyrStatusCode ReportSystemDevice(kyrIOHandle handle, const char* className, const TPath& device);
/// The same for each item, whose path the function gives.
template <typename TItems, typename F>
kyrStatusCode ReportSystemDevices(kyrIOHandle handle, const char* className, const TItems& items, F pathOf) {
    return ReportEach(items, [&](const auto& item) { return ReportSystemDevice(handle, className, pathOf(item)); });
}
/// A CIM_Dependency on the bus device that something is on. Nothing, if that is none or no plugin declares its class.
kyrStatusCode ReportBusDevice(kyrIOHandle handle, const char* className, const TBusDevice& antecedent,
                              const TPath& dependent);

#endif
