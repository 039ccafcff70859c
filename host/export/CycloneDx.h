#ifndef KYR_HOST_EXPORT_CYCLONEDX_H
#define KYR_HOST_EXPORT_CYCLONEDX_H

#include <string>
#include <vector>

#include "base/Output.h"

class TContainer;

struct TCycloneDxOptions {
    bool identifiers = false;     ///< with serial numbers, addresses and the like
    bool sourcePackages = false;  ///< with a component for each source package
    bool stable = false;          ///< without the time of the collection
};

/// The names of the classes that a bill of materials is made of.
std::vector<std::string> CycloneDxClasses();

/// Writes the software, firmware and devices of the one machine in the container as a CycloneDX 1.6 bill of materials.
void WriteCycloneDx(const TContainer& container, const TCycloneDxOptions& options, TOutput& output);

#endif
