#include "InstanceReport.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <ctime>

#include "SystemRoot.h"

namespace {

std::string AskHostName() {
    const TSystemRoot root = TSystemRoot::FromEnvironment();
    if (!root.IsRunningMachine()) return root.ReadText("/proc/sys/kernel/hostname").ValueOr("localhost");
    char name[256] = "";
    if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') return "localhost";
    return name;
}

// Cached, because the path of every device holds it.
const std::string& HostName() {
    static const std::string name = AskHostName();
    return name;
}

class TReference {
public:
    TReference(kyrIOHandle handle, const TInstancePath& path) {
        fStatus = kyrNewCIMReference(&fReference, handle);
        if (fStatus != kyrStatusOK) return;
        fStatus = kyrSetReferenceClassName(fReference, path.className.c_str());
        for (const auto& [key, value] : path.keys)
            if (fStatus == kyrStatusOK) fStatus = kyrReferenceAddString(fReference, key, value.c_str());
    }
    TReference(const TReference&) = delete;
    TReference& operator=(const TReference&) = delete;
    ~TReference() {
        if (fReference != nullptr) kyrDeleteCIMReference(fReference);
    }

    bool IsGood() const { return fStatus == kyrStatusOK; }

    kyrStatusCode AddTo(kyrIOHandle handle, const char* property) const {
        return fStatus == kyrStatusOK ? kyrAddReferenceProperty(handle, property, fReference) : fStatus;
    }

private:
    kyrCIMReference fReference = nullptr;
    kyrStatusCode fStatus;
};

kyrStatusCode AddTimestamp(kyrIOHandle handle, const char* property, kyrCIMDateTime datetime, TTimestamp timestamp) {
    const time_t shown = static_cast<time_t>(timestamp.seconds + timestamp.offsetMinutes * 60);
    struct tm time;
    if (gmtime_r(&shown, &time) == nullptr) return kyrStatusInvalidDateTime;
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d.000000%+04d", (time.tm_year + 1900) % 10000,
                  (time.tm_mon + 1) % 100, time.tm_mday % 100, time.tm_hour % 100, time.tm_min % 100, time.tm_sec % 100,
                  timestamp.offsetMinutes % 1000);
    const kyrStatusCode status = kyrSetDateTimeString(datetime, text);
    return status == kyrStatusOK ? kyrAddDateTimeProperty(handle, property, datetime) : status;
}

}  // namespace

TInstancePath ComputerSystem() {
    const char *className = nullptr, *name = nullptr;
    if (kyrGetSystemCreationClassName(&className) != kyrStatusOK || kyrGetSystemName(&name) != kyrStatusOK)
        return {"MOLTA_ComputerSystem", {{"CreationClassName", "MOLTA_ComputerSystem"}, {"Name", HostName()}}};
    return {className, {{"CreationClassName", className}, {"Name", name}}};
}

TInstancePath DevicePath(const std::string& className, const std::string& deviceId) {
    TInstancePath system = ComputerSystem();
    return {className,
            {{"SystemCreationClassName", std::move(system.className)},
             {"SystemName", std::move(system.keys.back().second)},
             {"CreationClassName", className},
             {"DeviceID", deviceId}}};
}

TInstancePath ScopedPath(const std::string& className, const std::string& name) {
    TInstancePath path = DevicePath(className, name);
    path.keys.back().first = "Name";
    return path;
}

TFact<TTimestamp> TimestampOf(const TFact<int64_t>& seconds) {
    return seconds.Map([](int64_t time) { return std::optional(TTimestamp{time}); });
}

bool IsKnownClass(kyrIOHandle handle, const char* className) {
    return TReference(handle, TInstancePath{className, {}}).IsGood();
}

TInstanceReport::TInstanceReport(kyrIOHandle handle, const char* className)
    : fHandle(handle), fStatus(kyrAddClass(handle, className)) {}

TInstanceReport::TInstanceReport(kyrIOHandle handle, const TInstancePath& path)
    : TInstanceReport(handle, path.className.c_str()) {
    for (const auto& [key, value] : path.keys) Set(key, value);
}

/// False, with the status kept, if the core cannot make the object or an earlier call failed.
template <typename T>
bool TInstanceReport::Create(kyrStatusCode (*make)(T*), T& object) {
    if (fStatus == kyrStatusOK) Keep(make(&object));
    return fStatus == kyrStatusOK;
}

// After a failed kyrAddClass the instance before it is still the current one: a property set now would go there.
template <typename F, typename T>
void TInstanceReport::SetBy(F add, const char* property, T value) {
    if (fStatus == kyrStatusOK) Keep(add(fHandle, property, value));
}

void TInstanceReport::Set(const char* property, bool value) { SetBy(kyrAddBooleanProperty, property, value); }
void TInstanceReport::Set(const char* property, uint8_t value) { SetBy(kyrAddUint8Property, property, value); }
void TInstanceReport::Set(const char* property, uint16_t value) { SetBy(kyrAddUint16Property, property, value); }
void TInstanceReport::Set(const char* property, uint32_t value) { SetBy(kyrAddUint32Property, property, value); }
void TInstanceReport::Set(const char* property, uint64_t value) { SetBy(kyrAddUint64Property, property, value); }
void TInstanceReport::Set(const char* property, int16_t value) { SetBy(kyrAddSint16Property, property, value); }
void TInstanceReport::Set(const char* property, int32_t value) { SetBy(kyrAddSint32Property, property, value); }
void TInstanceReport::Set(const char* property, int64_t value) { SetBy(kyrAddSint64Property, property, value); }
void TInstanceReport::Set(const char* property, const char* value) { SetBy(kyrAddStringProperty, property, value); }
void TInstanceReport::Set(const char* property, const std::string& value) { Set(property, value.c_str()); }
void TInstanceReport::Set(const char* property, const TInstancePath& value) {
    if (fStatus == kyrStatusOK) Keep(TReference(fHandle, value).AddTo(fHandle, property));
}

void TInstanceReport::Set(const char* property, double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    SetBy(kyrAddProperty, property, text);
}

void TInstanceReport::Set(const char* property, TTimestamp value) {
    kyrCIMDateTime datetime;
    if (!Create(kyrNewCIMDateTime, datetime)) return;
    Keep(AddTimestamp(fHandle, property, datetime, value));
    kyrDeleteCIMDateTime(datetime);
}

void TInstanceReport::Set(const char* property, const std::vector<std::string>& value) {
    SetArray(property, value,
             [](kyrCIMValueArray array, const std::string& text) { return kyrArrayAddString(array, text.c_str()); });
}

void TInstanceReport::Set(const char* property, const std::vector<uint16_t>& value) {
    SetArray(property, value, kyrArrayAddUint16);
}

void TInstanceReport::Set(const char* property, const std::vector<uint32_t>& value) {
    SetArray(property, value, kyrArrayAddUint32);
}

kyrStatusCode TInstanceReport::Finish() {
    if (!fUnavailable.empty()) Set("UnavailableValues", fUnavailable);
    if (!fSources.empty()) Set("ValueSources", fSources);
    return fStatus;
}

void TInstanceReport::Keep(kyrStatusCode status) {
    if (fStatus == kyrStatusOK) fStatus = status;
}

// A value without a source was derived here: it has no file or call to name.
void TInstanceReport::Note(const char* property, const std::string& source, const char* absence) {
    if (source.empty()) return;
    if (absence == nullptr)
        fSources.push_back(std::string(property) + ": " + source);
    else
        fUnavailable.push_back(std::string(property) + ": " + absence + ": " + source);
}

template <typename T, typename F>
void TInstanceReport::SetArray(const char* property, const std::vector<T>& values, F append) {
    kyrCIMValueArray array;
    if (!Create(kyrNewCIMValueArray, array)) return;
    for (const T& value : values) Keep(append(array, value));
    SetBy(kyrAddArrayProperty, property, array);
    kyrDeleteCIMValueArray(array);
}

kyrStatusCode ReportAssociation(kyrIOHandle handle, const char* className, const char* firstRole,
                                const TInstancePath& first, const char* secondRole, const TInstancePath& second) {
    TInstanceReport association(handle, className);
    association.Set(firstRole, first);
    association.Set(secondRole, second);
    return association.Finish();
}

kyrStatusCode ReportSystemDevice(kyrIOHandle handle, const char* className, const TInstancePath& device) {
    const TInstancePath system = ComputerSystem();
    if (!IsKnownClass(handle, system.className.c_str())) return kyrStatusOK;
    return ReportAssociation(handle, className, "GroupComponent", system, "PartComponent", device);
}

kyrStatusCode ReportBusDevice(kyrIOHandle handle, const char* className, const TBusDevice& antecedent,
                              const TInstancePath& dependent) {
    const bool isUsb = !antecedent.usbId.empty();
    const char* const deviceClass = isUsb ? "MOLTA_USBDevice" : "MOLTA_PCIDevice";
    const std::string& id = isUsb ? antecedent.usbId : antecedent.pciAddress;
    if (id.empty() || !IsKnownClass(handle, deviceClass)) return kyrStatusOK;
    return ReportAssociation(handle, className, "Antecedent", DevicePath(deviceClass, id), "Dependent", dependent);
}
