#ifndef KYR_PLUGINS_PROCESSOR_CPULIST_H
#define KYR_PLUGINS_PROCESSOR_CPULIST_H

#include "SystemRoot.h"

/// More than any kernel is built for; greater numbers are not believed.
constexpr uint32_t kMaxCpus = 8192;

/// The numbers of a list such as "0-3,8"; nothing if it is none.
std::optional<std::vector<uint32_t>> ParseCpuList(std::string_view text);
TFact<std::vector<uint32_t>> ReadCpuList(const TSystemRoot& root, const std::string& path);

#endif
