#include "facts.h"

#include <stdlib.h>
#include <string.h>

#include "textfile.h"

void ReadSystemFacts(const char* root, SystemFacts* facts) {
    if (root == NULL) root = "";
    memset(facts, 0, sizeof *facts);
    facts->upTime = -1;
    ReadDmi(root, facts);
    ReadOsRelease(root, facts);
    ReadKernel(root, facts);
    if (facts->hostName == NULL) facts->hostName = CopyText("localhost");
    if (facts->osName == NULL) facts->osName = CopyText("Linux");
}

void FreeSystemFacts(SystemFacts* facts) {
    char* const texts[] = {
        facts->hostName,    facts->manufacturer, facts->productName,   facts->productVersion,   facts->productFamily,
        facts->skuNumber,   facts->serialNumber, facts->uuid,          facts->assetTag,         facts->biosVendor,
        facts->biosVersion, facts->biosRelease,  facts->osName,        facts->machineTypeModel, facts->osPrettyName,
        facts->osVersion,   facts->osId,         facts->kernelRelease, facts->kernelVersion,    facts->architecture,
    };
    for (size_t i = 0; i < sizeof texts / sizeof *texts; ++i) free(texts[i]);
    memset(facts, 0, sizeof *facts);
}
