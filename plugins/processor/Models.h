#ifndef KYR_PLUGINS_PROCESSOR_MODELS_H
#define KYR_PLUGINS_PROCESSOR_MODELS_H

#include "CpuInfo.h"
#include "ProcessorFacts.h"

/// Fills in what /proc/cpuinfo tells of a package, from one of its threads.
void DescribePackage(const TCpuInfo& info, uint32_t thread, TPackage& package);
/// After that, where the cores of a package are of several models: gives each core its own, and the package all.
void DescribeMixedCores(const TCpuInfo& info, TProcessorFacts& facts);
/// How fast a thread runs, in megahertz.
TFact<uint32_t> ClockOf(const TCpuInfo& info, uint32_t thread);

/// The name of a maker by the number that an ARM processor has for it, such as 0x41; null if it is unknown.
const char* FindArmMaker(uint32_t implementer);
/// The name of a model by that number and the maker's number for the model; null if it is unknown.
const char* FindArmModel(uint32_t implementer, uint32_t part);

#endif
