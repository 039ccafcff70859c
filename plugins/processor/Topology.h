#ifndef KYR_PLUGINS_PROCESSOR_TOPOLOGY_H
#define KYR_PLUGINS_PROCESSOR_TOPOLOGY_H

#include "CpuInfo.h"
#include "ProcessorFacts.h"

/// Fills in threads and cores, and adds the packages with their ids only.
void ReadTopology(const TSystemRoot& root, const TCpuInfo& info, TProcessorFacts& facts);

// To be called after ReadTopology.
void ReadCaches(const TSystemRoot& root, TProcessorFacts& facts);
void ReadNumaNodes(const TSystemRoot& root, TProcessorFacts& facts);

/// Null if there is no thread with that number.
TThread* FindThread(TProcessorFacts& facts, uint32_t number);
/// The sysfs path of a file of a thread.
std::string CpuFile(uint32_t number, const std::string& name);
/// A clock speed, in megahertz.
TFact<uint32_t> ReadKilohertz(const TSystemRoot& root, const std::string& path);

#endif
