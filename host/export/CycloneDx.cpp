#include "export/CycloneDx.h"

#include "export/CycloneDxModel.h"
#include "export/Rows.h"
#include "states/HostIdentity.h"

std::vector<std::string> CycloneDxClasses() {
    std::vector<std::string> names = {kHostClass, kOperatingSystemClass, kPackageClass, kLanguagePackageClass};
    for (const std::vector<std::string>& more : {HardwareClasses(), HardwareAssociations()})
        names.insert(names.end(), more.begin(), more.end());
    return names;
}

void WriteCycloneDx(const TContainer& container, const TCycloneDxOptions& options, TOutput& output) {
    TBom bom;
    if (!options.stable) bom.fTimestamp = RunOf(container).collectedAt;
    AddSoftware(container, options, bom);
    AddHardware(container, options, bom);
    AddCompleteness(container, bom);
    WriteBom(bom, output);
}
