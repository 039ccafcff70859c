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

// Asked once: every device names its system.
const std::string& HostName() {
    static const std::string name = AskHostName();
    return name;
}

class TReference {
public:
    TReference(kyrIOHandle handle, const TPath& path) {
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

kyrStatusCode AddMoment(kyrIOHandle handle, const char* property, kyrCIMDateTime datetime, TMoment moment) {
    const time_t shown = static_cast<time_t>(moment.seconds + moment.offsetMinutes * 60);
    struct tm time;
    if (gmtime_r(&shown, &time) == nullptr) return kyrStatusInvalidDateTime;
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d.000000%+04d", (time.tm_year + 1900) % 10000,
                  (time.tm_mon + 1) % 100, time.tm_mday % 100, time.tm_hour % 100, time.tm_min % 100, time.tm_sec % 100,
                  moment.offsetMinutes % 1000);
    const kyrStatusCode status = kyrSetDateTimeString(datetime, text);
    return status == kyrStatusOK ? kyrAddDateTimeProperty(handle, property, datetime) : status;
}

}  // namespace

TPath ComputerSystem() {
    const char *className = nullptr, *name = nullptr;
    if (kyrGetSystemCreationClassName(&className) != kyrStatusOK || kyrGetSystemName(&name) != kyrStatusOK)
        return {"MOLTA_ComputerSystem", {{"CreationClassName", "MOLTA_ComputerSystem"}, {"Name", HostName()}}};
    return {className, {{"CreationClassName", className}, {"Name", name}}};
}

TPath DevicePath(const std::string& className, const std::string& deviceId) {
    TPath system = ComputerSystem();
    return {className,
            {{"SystemCreationClassName", std::move(system.className)},
             {"SystemName", std::move(system.keys.back().second)},
             {"CreationClassName", className},
             {"DeviceID", deviceId}}};
}

TPath ScopedPath(const std::string& className, const std::string& name) {
    TPath path = DevicePath(className, name);
    path.keys.back().first = "Name";
    return path;
}

bool IsKnownClass(kyrIOHandle handle, const char* className) {
    return TReference(handle, TPath{className, {}}).IsGood();
}

TInstanceReport::TInstanceReport(kyrIOHandle handle, const char* className)
    : fHandle(handle), fStatus(kyrAddClass(handle, className)) {}

TInstanceReport::TInstanceReport(kyrIOHandle handle, const TPath& path)
    : TInstanceReport(handle, path.className.c_str()) {
    for (const auto& [key, value] : path.keys) Set(key, value);
}

// Nothing may be set after kyrAddClass failed: the instance before would get it.
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
void TInstanceReport::Set(const char* property, const TPath& value) {
    if (fStatus == kyrStatusOK) Keep(TReference(fHandle, value).AddTo(fHandle, property));
}

void TInstanceReport::Set(const char* property, double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    SetBy(kyrAddProperty, property, text);
}

void TInstanceReport::Set(const char* property, TMoment value) {
    kyrCIMDateTime datetime;
    if (fStatus != kyrStatusOK || kyrNewCIMDateTime(&datetime) != kyrStatusOK) return;
    Keep(AddMoment(fHandle, property, datetime, value));
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

// A fact without a source was made up on the way, and there is nothing to tell of it.
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
    if (fStatus != kyrStatusOK || kyrNewCIMValueArray(&array) != kyrStatusOK) return;
    for (const T& value : values) Keep(append(array, value));
    SetBy(kyrAddArrayProperty, property, array);
    kyrDeleteCIMValueArray(array);
}

kyrStatusCode ReportTie(kyrIOHandle handle, const char* className, const char* firstRole, const TPath& first,
                        const char* secondRole, const TPath& second) {
    TInstanceReport tie(handle, className);
    tie.Set(firstRole, first);
    tie.Set(secondRole, second);
    return tie.Finish();
}

kyrStatusCode ReportSystemDevice(kyrIOHandle handle, const char* className, const TPath& device) {
    const TPath system = ComputerSystem();
    if (!IsKnownClass(handle, system.className.c_str())) return kyrStatusOK;
    return ReportTie(handle, className, "GroupComponent", system, "PartComponent", device);
}

kyrStatusCode ReportBusDevice(kyrIOHandle handle, const char* className, const TBusDevice& antecedent,
                              const TPath& dependent) {
    const bool isUsb = !antecedent.usbId.empty();
    const char* const deviceClass = isUsb ? "MOLTA_USBDevice" : "MOLTA_PCIDevice";
    const std::string& id = isUsb ? antecedent.usbId : antecedent.pciAddress;
    if (id.empty() || !IsKnownClass(handle, deviceClass)) return kyrStatusOK;
    return ReportTie(handle, className, "Antecedent", DevicePath(deviceClass, id), "Dependent", dependent);
}
