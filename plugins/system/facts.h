/* What the reader finds out about a machine, without a word of the core. */
#ifndef SYSTEM_FACTS_H
#define SYSTEM_FACTS_H

#include <stdint.h>

/* Texts are as the machine gives them, blanks at the ends taken away, in whatever encoding; NULL: not known. */
typedef struct SystemFacts {
    /* The computer, from DMI but for the name. */
    char* hostName;
    char* manufacturer;
    char* productName;
    char* productVersion;
    char* productFamily;
    char* skuNumber;
    char* serialNumber;
    char* uuid;
    char* assetTag;
    uint32_t chassisType; /* by the numbers of SMBIOS; 0: not known */

    /* Its firmware, from DMI. */
    char* biosVendor;
    char* biosVersion;
    char* biosRelease;
    char* machineTypeModel; /* seven characters */
    uint32_t biosYear;      /* 0: the date is not known */
    uint32_t biosMonth;
    uint32_t biosDay;

    /* The operating system. */
    char* osName;
    char* osPrettyName;
    char* osVersion;
    char* osId;
    char* kernelRelease;
    char* kernelVersion;
    char* architecture;
    int64_t bootTime; /* seconds since 1970; 0: not known */
    int64_t upTime;   /* in seconds; -1: not known */
} SystemFacts;

/*
 * Reads the machine whose files stand below root; NULL or "" is the running one. hostName and osName are never NULL
 * afterwards: they are keys. Release with FreeSystemFacts.
 */
void ReadSystemFacts(const char* root, SystemFacts* facts);
void FreeSystemFacts(SystemFacts* facts);

/* The parts of it. Each leaves alone what it cannot find. */
void ReadDmi(const char* root, SystemFacts* facts);
void ReadOsRelease(const char* root, SystemFacts* facts);
void ReadKernel(const char* root, SystemFacts* facts);

#endif
