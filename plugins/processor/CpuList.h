#ifndef KYR_PLUGINS_PROCESSOR_CPULIST_H
#define KYR_PLUGINS_PROCESSOR_CPULIST_H

#include "SystemRoot.h"

/// The most that kernels are built for. A list with a greater number is taken for malformed.
constexpr uint32_t kMaxCpus = 8192;

/// The numbers of a list such as "0-3,8"; nothing if it is malformed.
std::optional<std::vector<uint32_t>> ParseCpuList(std::string_view text);
/// The numbers, ascending, of a mask such as "00000001,0000000f": hexadecimal groups of 32 bits, the highest first;
/// nothing if it is malformed.
std::optional<std::vector<uint32_t>> ParseCpuMask(std::string_view text);
/// "0-3,8" of ascending numbers.
std::string FormatCpuList(const std::vector<uint32_t>& numbers);
TFact<std::vector<uint32_t>> ReadCpuList(const TSystemRoot& root, const std::string& path);
/// The content of a file with a list; of the file with the mask, as a list, where the kernel has only that.
TFact<std::string> ReadCpuListText(const TSystemRoot& root, const std::string& listPath, const std::string& maskPath);

#endif
