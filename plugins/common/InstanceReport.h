#ifndef KYR_PLUGINS_COMMON_INSTANCEREPORT_H
#define KYR_PLUGINS_COMMON_INSTANCEREPORT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BusDevice.h"
#include "Fact.h"
#include "kyr/kyrPlugin.h"

/// The path of an instance: its class and the values of its keys, which are all strings.
struct TInstancePath {
    std::string className;
    std::vector<std::pair<const char*, std::string>> keys;
};

/// The computer system that the core has collected; before there is one, a MOLTA_ComputerSystem with the host name.
TInstancePath ComputerSystem();
/// The path of an instance whose class has the keys of CIM_LogicalDevice.
TInstancePath DevicePath(const std::string& className, const std::string& deviceId);
/// The same for the keys of CIM_FileSystem, CIM_Service and CIM_ServiceAccessPoint: a Name within the system.
TInstancePath ScopedPath(const std::string& className, const std::string& name);

/// False for a class that no loaded plugin declares; a reference to it cannot be made.
bool IsKnownClass(kyrIOHandle handle, const char* className);

/// Seconds since 1970-01-01 UTC. Reported with the UTC offset given, in minutes.
struct TTimestamp {
    int64_t seconds;
    int32_t offsetMinutes = 0;
};
TFact<TTimestamp> TimestampOf(const TFact<int64_t>& seconds);

/// Builds one instance in the core. Properties must have the type that the document declares. The status of the first
/// call that fails is kept, nothing is set after it, and Finish returns it.
class TInstanceReport {
public:
    TInstanceReport(kyrIOHandle handle, const TInstancePath& path);
    TInstanceReport(kyrIOHandle handle, const char* className);
    TInstanceReport(const TInstanceReport&) = delete;
    TInstanceReport& operator=(const TInstanceReport&) = delete;

    /// Sets the property and notes its source in ValueSources; or notes in UnavailableValues why there is no value.
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
    void Set(const char* property, double value);  ///< for real32 and real64
    void Set(const char* property, const char* value);
    void Set(const char* property, const std::string& value);
    void Set(const char* property, TTimestamp value);
    void Set(const char* property, const std::vector<std::string>& value);
    void Set(const char* property, const std::vector<uint16_t>& value);
    void Set(const char* property, const std::vector<uint32_t>& value);
    void Set(const char* property, const TInstancePath& value);  ///< a reference

    /// Adds ValueSources and UnavailableValues. The core stores the instance when the next one begins or the data
    /// callback returns.
    kyrStatusCode Finish();

private:
    void Keep(kyrStatusCode status);
    void Note(const char* property, const std::string& source, const char* absence);
    template <typename T>
    bool Create(kyrStatusCode (*make)(T*), T& object);
    template <typename F, typename T>
    void SetBy(F add, const char* property, T value);
    template <typename T, typename F>
    void SetArray(const char* property, const std::vector<T>& values, F append);

    kyrIOHandle fHandle;
    kyrStatusCode fStatus;
    std::vector<std::string> fSources;
    std::vector<std::string> fUnavailable;
};

/// Calls the function with each item and stops at the first failure, whose status it returns.
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

/// An association of two instances.
kyrStatusCode ReportAssociation(kyrIOHandle handle, const char* className, const char* firstRole,
                                const TInstancePath& first, const char* secondRole, const TInstancePath& second);
/// A CIM_SystemDevice from the computer system to the device. Reports nothing if no plugin declares the system's class.
kyrStatusCode ReportSystemDevice(kyrIOHandle handle, const char* className, const TInstancePath& device);
/// The same for each item; the function returns the item's path.
template <typename TItems, typename F>
kyrStatusCode ReportSystemDevices(kyrIOHandle handle, const char* className, const TItems& items, F pathOf) {
    return ReportEach(items, [&](const auto& item) { return ReportSystemDevice(handle, className, pathOf(item)); });
}
/// A CIM_Dependency on a PCI or USB device. Reports nothing if there is none or no plugin declares its class.
kyrStatusCode ReportBusDevice(kyrIOHandle handle, const char* className, const TBusDevice& antecedent,
                              const TInstancePath& dependent);

#endif
