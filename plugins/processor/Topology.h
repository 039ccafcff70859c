#ifndef KYR_PLUGINS_PROCESSOR_TOPOLOGY_H
#define KYR_PLUGINS_PROCESSOR_TOPOLOGY_H

#include "CpuInfo.h"
#include "ProcessorFacts.h"

/// Fills in threads, cores and packages, and of the packages no more than which there are.
void ReadTopology(const TSystemRoot& root, const TCpuInfo& info, TProcessorFacts& facts);

// What rests on it.
void ReadCaches(const TSystemRoot& root, TProcessorFacts& facts);
void ReadNumaNodes(const TSystemRoot& root, TProcessorFacts& facts);

/// Null if there is no thread of that number.
TThread* FindThread(TProcessorFacts& facts, uint32_t number);
/// A file of sysfs about a thread.
std::string CpuFile(uint32_t number, const std::string& name);

#endif
