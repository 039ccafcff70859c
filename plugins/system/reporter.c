#define _DEFAULT_SOURCE /* tm_gmtoff */

#include "reporter.h"

#include <stddef.h>
#include <string.h>
#include <time.h>

#define COMPUTER_SYSTEM "MOLTA_ComputerSystem"
#define OPERATING_SYSTEM "MOLTA_OperatingSystem"
#define BIOS_ELEMENT "MOLTA_SystemBIOSElement"
#define PRODUCT "MOLTA_ORQProduct"
#define INSTALLED_OS "MOLTA_InstalledOS"

enum { kOSTypeLinux = 36 };

/* Which text of the facts fills which property. */
typedef struct TextProperty {
    const char* name;
    size_t offset;
} TextProperty;

static const TextProperty kComputerTexts[] = {
    {"Name", offsetof(SystemFacts, hostName)},
    {"Manufacturer", offsetof(SystemFacts, manufacturer)},
    {"ProductName", offsetof(SystemFacts, productName)},
    {"ProductVersion", offsetof(SystemFacts, productVersion)},
    {"ProductFamily", offsetof(SystemFacts, productFamily)},
    {"SKUNumber", offsetof(SystemFacts, skuNumber)},
    {"SerialNumber", offsetof(SystemFacts, serialNumber)},
    {"UUID", offsetof(SystemFacts, uuid)},
    {"AssetTag", offsetof(SystemFacts, assetTag)},
    {NULL, 0},
};

static const TextProperty kOperatingSystemTexts[] = {
    {"CSName", offsetof(SystemFacts, hostName)},
    {"Name", offsetof(SystemFacts, osName)},
    {"Caption", offsetof(SystemFacts, osPrettyName)},
    {"Version", offsetof(SystemFacts, osVersion)},
    {"DistributionID", offsetof(SystemFacts, osId)},
    {"KernelRelease", offsetof(SystemFacts, kernelRelease)},
    {"KernelVersion", offsetof(SystemFacts, kernelVersion)},
    {"Architecture", offsetof(SystemFacts, architecture)},
    {NULL, 0},
};

static const TextProperty kBiosTexts[] = {
    {"Manufacturer", offsetof(SystemFacts, biosVendor)},
    {"Version", offsetof(SystemFacts, biosVersion)},
    {"FirmwareRelease", offsetof(SystemFacts, biosRelease)},
    {"MachineTypeModel", offsetof(SystemFacts, machineTypeModel)},
    {NULL, 0},
};

static void AddTexts(kyrIOHandle handle, const TextProperty* property, const SystemFacts* facts) {
    for (; property->name != NULL; ++property) {
        const char* const text = *(char* const*)((const char*)facts + property->offset);
        if (text != NULL) kyrAddStringProperty(handle, property->name, text);
    }
}

static kyrStatusCode ReportComputerSystem(kyrIOHandle handle, const SystemFacts* facts) {
    const kyrStatusCode status = kyrAddClass(handle, COMPUTER_SYSTEM);
    if (status != kyrStatusOK) return status;
    kyrAddStringProperty(handle, "CreationClassName", COMPUTER_SYSTEM);
    AddTexts(handle, kComputerTexts, facts);
    if (facts->chassisType != 0) kyrAddUint16Property(handle, "ChassisType", facts->chassisType);
    return kyrStatusOK;
}

static kyrStatusCode SetToMoment(kyrCIMDateTime datetime, int64_t seconds) {
    const time_t moment = (time_t)seconds;
    struct tm local;
    if (localtime_r(&moment, &local) == NULL) return kyrStatusInvalidDateTime;
    return kyrSetDateTime(datetime, (uint32_t)local.tm_year + 1900, (uint32_t)local.tm_mon + 1, (uint32_t)local.tm_mday,
                          (uint32_t)local.tm_hour, (uint32_t)local.tm_min, (uint32_t)local.tm_sec, 0,
                          (int32_t)(local.tm_gmtoff / 60));
}

static void AddTimes(kyrIOHandle handle, const SystemFacts* facts) {
    kyrCIMDateTime datetime;
    if (kyrNewCIMDateTime(&datetime) != kyrStatusOK) return;
    if (facts->bootTime != 0 && SetToMoment(datetime, facts->bootTime) == kyrStatusOK)
        kyrAddDateTimeProperty(handle, "LastBootUpTime", datetime);
    if (kyrGetLocalTime(datetime) == kyrStatusOK) kyrAddDateTimeProperty(handle, "LocalDateTime", datetime);
    kyrDeleteCIMDateTime(datetime);
}

static kyrStatusCode ReportOperatingSystem(kyrIOHandle handle, const SystemFacts* facts) {
    const kyrStatusCode status = kyrAddClass(handle, OPERATING_SYSTEM);
    if (status != kyrStatusOK) return status;
    kyrAddStringProperty(handle, "CSCreationClassName", COMPUTER_SYSTEM);
    kyrAddStringProperty(handle, "CreationClassName", OPERATING_SYSTEM);
    AddTexts(handle, kOperatingSystemTexts, facts);
    kyrAddUint16Property(handle, "OSType", kOSTypeLinux);
    if (facts->upTime >= 0) kyrAddUint64Property(handle, "SystemUpTime", (uint64_t)facts->upTime);
    AddTimes(handle, facts);
    return kyrStatusOK;
}

static void AddReleaseDate(kyrIOHandle handle, const SystemFacts* facts) {
    kyrCIMDateTime datetime;
    if (facts->biosYear == 0 || kyrNewCIMDateTime(&datetime) != kyrStatusOK) return;
    if (kyrSetDateTime(datetime, facts->biosYear, facts->biosMonth, facts->biosDay, 0, 0, 0, 0, 0) == kyrStatusOK)
        kyrAddDateTimeProperty(handle, "ReleaseDate", datetime);
    kyrDeleteCIMDateTime(datetime);
}

static kyrStatusCode ReportBios(kyrIOHandle handle, const SystemFacts* facts) {
    const kyrStatusCode status = kyrAddClass(handle, BIOS_ELEMENT);
    if (status != kyrStatusOK) return status;
    kyrAddStringProperty(handle, "Name", "System firmware");
    kyrAddStringProperty(handle, "SoftwareElementID", "0");
    AddTexts(handle, kBiosTexts, facts);
    AddReleaseDate(handle, facts);
    return kyrStatusOK;
}

static kyrStatusCode ReportProduct(kyrIOHandle handle, const SystemFacts* facts) {
    (void)facts;
    const kyrStatusCode status = kyrAddClass(handle, PRODUCT);
    if (status != kyrStatusOK) return status;
    kyrAddStringProperty(handle, "Name", "kyrcore");
    kyrAddStringProperty(handle, "IdentifyingNumber", "0");
    kyrAddStringProperty(handle, "Vendor", "kyrcore");
    kyrAddStringProperty(handle, "Version", KYRCORE_VERSION);
    return kyrStatusOK;
}

/* Binds the keys in pairs of name and value, up to a NULL. */
static kyrStatusCode AddReference(kyrIOHandle handle, const char* property, const char* className,
                                  const char* const* keys) {
    kyrCIMReference reference;
    kyrStatusCode status = kyrNewCIMReference(&reference, handle);
    if (status != kyrStatusOK) return status;
    status = kyrSetReferenceClassName(reference, className);
    for (; status == kyrStatusOK && *keys != NULL; keys += 2)
        status = kyrReferenceAddString(reference, keys[0], keys[1]);
    if (status == kyrStatusOK) status = kyrAddReferenceProperty(handle, property, reference);
    kyrDeleteCIMReference(reference);
    return status;
}

static kyrStatusCode ReportInstalledOS(kyrIOHandle handle, const SystemFacts* facts) {
    const char* const computer[] = {"CreationClassName", COMPUTER_SYSTEM, "Name", facts->hostName, NULL};
    const char* const system[] = {"CSCreationClassName",
                                  COMPUTER_SYSTEM,
                                  "CSName",
                                  facts->hostName,
                                  "CreationClassName",
                                  OPERATING_SYSTEM,
                                  "Name",
                                  facts->osName,
                                  NULL};
    kyrStatusCode status = kyrAddClass(handle, INSTALLED_OS);
    if (status == kyrStatusOK) status = AddReference(handle, "GroupComponent", COMPUTER_SYSTEM, computer);
    if (status == kyrStatusOK) status = AddReference(handle, "PartComponent", OPERATING_SYSTEM, system);
    return status;
}

typedef struct ClassReport {
    const char* className;
    kyrStatusCode (*report)(kyrIOHandle handle, const SystemFacts* facts);
} ClassReport;

static const ClassReport kReports[] = {
    {COMPUTER_SYSTEM, ReportComputerSystem},
    {OPERATING_SYSTEM, ReportOperatingSystem},
    {BIOS_ELEMENT, ReportBios},
    {PRODUCT, ReportProduct},
    {INSTALLED_OS, ReportInstalledOS},
};

kyrStatusCode ReportClass(kyrIOHandle handle, const char* className, const SystemFacts* facts) {
    for (size_t i = 0; i < sizeof kReports / sizeof *kReports; ++i)
        if (strcmp(className, kReports[i].className) == 0) return kReports[i].report(handle, facts);
    return kyrStatusUnknownClass;
}
