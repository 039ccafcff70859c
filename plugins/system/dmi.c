#define _POSIX_C_SOURCE 200809L

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>

#include "facts.h"
#include "textfile.h"

/* What makers leave in fields that they did not fill. Compared without regard to case. */
static const char* const kPlaceholders[] = {
    "To be filled by O.E.M.",
    "To be filled by OEM",
    "O.E.M.",
    "OEM",
    "Default string",
    "Not Specified",
    "Not Available",
    "Not Applicable",
    "Not Present",
    "Not Provided",
    "Not Set",
    "N/A",
    "None",
    "Null",
    "Unknown",
    "Undefined",
    "Unspecified",
    "Invalid",
    "Empty",
    "System Product Name",
    "System manufacturer",
    "System Version",
    "System Serial Number",
    "System SKU",
    "System Family",
    "System Name",
    "SKU",
    "Chassis Serial Number",
    "Chassis Manufacture",
    "Serial Number",
    "Asset Tag",
    "No Asset Tag",
    "No Asset Information",
    "Asset-1234567890",
    "Type1ProductConfigId",
    "0123456789",
    "1234567890",
    "123456789",
    "0",
    "00000000",
    "0000000000",
    "........",
    "xxxxxxxxxxx",
    "00000000-0000-0000-0000-000000000000",
    "ffffffff-ffff-ffff-ffff-ffffffffffff",
    "03000200-0400-0500-0006-000700080009",
};

static int IsPlaceholder(const char* text) {
    for (size_t i = 0; i < sizeof kPlaceholders / sizeof *kPlaceholders; ++i)
        if (strcasecmp(text, kPlaceholders[i]) == 0) return 1;
    return 0;
}

static char* ReadField(const char* root, const char* name) {
    char path[64];
    snprintf(path, sizeof path, "/sys/class/dmi/id/%s", name);
    char* const text = ReadTrimmedFile(root, path);
    if (text == NULL || !IsPlaceholder(text)) return text;
    free(text);
    return NULL;
}

static uint32_t ReadChassisType(const char* root) {
    char* const text = ReadField(root, "chassis_type");
    if (text == NULL) return 0;
    const unsigned long number = strtoul(text, NULL, 10);
    free(text);
    return number <= 255 ? (uint32_t)number : 0;
}

/* "MM/DD/YYYY" */
static void ReadReleaseDate(const char* root, SystemFacts* facts) {
    char* const text = ReadField(root, "bios_date");
    if (text == NULL) return;
    unsigned int month = 0, day = 0, year = 0;
    const int fields = sscanf(text, "%2u/%2u/%4u", &month, &day, &year);
    free(text);
    if (fields != 3 || month < 1 || month > 12 || day < 1 || day > 31 || year < 1900) return;
    facts->biosYear = year;
    facts->biosMonth = month;
    facts->biosDay = day;
}

/* Not isalnum: whatever the host's locale makes of the other bytes, a machine type has none of them. */
static int IsLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/* Four characters of type and three of model. A type begins with a digit, which tells it from a product's name. */
static int IsMachineTypeModel(const char* text) {
    if (text == NULL || strlen(text) != 7 || *text < '0' || *text > '9') return 0;
    for (int i = 1; i < 7; ++i)
        if (!IsLetterOrDigit(text[i])) return 0;
    return 1;
}

void ReadDmi(const char* root, SystemFacts* facts) {
    facts->manufacturer = ReadField(root, "sys_vendor");
    facts->productName = ReadField(root, "product_name");
    facts->productVersion = ReadField(root, "product_version");
    facts->productFamily = ReadField(root, "product_family");
    facts->skuNumber = ReadField(root, "product_sku");
    facts->serialNumber = ReadField(root, "product_serial");
    facts->uuid = ReadField(root, "product_uuid");
    facts->assetTag = ReadField(root, "chassis_asset_tag");
    facts->chassisType = ReadChassisType(root);
    facts->biosVendor = ReadField(root, "bios_vendor");
    facts->biosVersion = ReadField(root, "bios_version");
    facts->biosRelease = ReadField(root, "bios_release");
    ReadReleaseDate(root, facts);
    if (IsMachineTypeModel(facts->productName))
        facts->machineTypeModel = CopyText(facts->productName);
    else if (IsMachineTypeModel(facts->skuNumber))
        facts->machineTypeModel = CopyText(facts->skuNumber);
}
