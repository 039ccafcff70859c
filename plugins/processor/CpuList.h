#ifndef KYR_PLUGINS_PROCESSOR_CPULIST_H
#define KYR_PLUGINS_PROCESSOR_CPULIST_H

#include "SystemRoot.h"

/// The most that kernels are built for. A list with a greater number is taken for malformed.
constexpr uint32_t kMaxCpus = 8192;

/// The numbers of a list such as "0-3,8"; nothing if it is malformed.
std::optional<std::vector<uint32_t>> ParseCpuList(std::string_view text);
TFact<std::vector<uint32_t>> ReadCpuList(const TSystemRoot& root, const std::string& path);

#endif
