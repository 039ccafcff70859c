#ifndef KYR_PLUGINS_PROCESSOR_PROCESSORFACTS_H
#define KYR_PLUGINS_PROCESSOR_PROCESSORFACTS_H

#include "SystemRoot.h"

/// A hardware thread; the kernel calls it a CPU and numbers it.
struct TThread {
    uint32_t number;
    TFact<bool> isOnline;
    TFact<uint32_t> clock = {};       ///< in megahertz
    std::optional<size_t> core = {};  ///< index; none if the thread is offline
};

enum class ECoreType : uint16_t { ePerformance = 2, eEfficiency = 3 };

/// Only cores with an online thread are known.
struct TCore {
    std::string name;  ///< unique in the machine
    size_t package;    ///< index
    std::vector<uint32_t> threads;
    TFact<uint32_t> id;            ///< the kernel's core_id, unique within a package or a die
    TFact<std::string> modelName;  ///< without a source if all cores of the package are of one model
    TFact<ECoreType> type;         ///< without a source if all cores are of one type
    TFact<uint32_t> lowestClock;   ///< in megahertz
    TFact<uint32_t> highestClock;
};

/// A processor package, which sits in one socket.
struct TPackage {
    std::string name;  ///< unique in the machine
    TFact<std::string> modelName;
    TFact<std::string> manufacturer;
    TFact<std::string> family;
    TFact<std::string> model;
    TFact<std::string> stepping;
    TFact<std::string> microcode;
    TFact<bool> isEnabled;
    TFact<uint32_t> coreCount;
    TFact<uint32_t> threadCount;
    TFact<uint32_t> clock;  ///< of the fastest thread, in megahertz
    TFact<uint32_t> lowestClock;
    TFact<uint32_t> highestClock;
    TFact<double> bogoMips;
    TFact<uint16_t> dataWidth;  ///< in bits, like the next two
    TFact<uint16_t> physicalAddressWidth;
    TFact<uint16_t> virtualAddressWidth;
    TFact<std::vector<std::string>> flags;
    TFact<std::vector<std::string>> bugs;
};

enum class ECacheType : uint16_t { eInstruction = 2, eData = 3, eUnified = 4 };

struct TCache {
    std::string name;
    size_t package;  ///< index
    TFact<uint16_t> level;
    TFact<ECacheType> type;
    TFact<uint64_t> size;      ///< in bytes
    TFact<uint32_t> lineSize;  ///< in bytes
    TFact<uint32_t> ways;
    TFact<std::string> threads;  ///< a list such as 0-3,8
};

struct TNumaNode {
    std::string name;
    TFact<std::string> threads;
    TFact<uint64_t> memorySize;  ///< in bytes
    TFact<uint64_t> freeMemory;
    TFact<std::vector<uint32_t>> distances;
    std::vector<size_t> packages;  ///< indices
};

struct TVulnerability {
    std::string name;
    TFact<std::string> state;
};

/// There are no packages if neither sysfs nor /proc/cpuinfo tells of a thread that is online.
struct TProcessorFacts {
    std::vector<TPackage> packages;
    std::vector<TCore> cores;
    std::vector<TThread> threads;  ///< sorted by number
    std::vector<TCache> caches;
    std::vector<TNumaNode> nodes;
    std::vector<TVulnerability> vulnerabilities;

    TListing cpuInfoListing;
    TListing cpuListing;  ///< the kernel's folder of all threads
    TListing threadListing;
    TListing coreListing;  ///< whether any core is known; the same for packages
    TListing cacheListing;
    TListing nodeListing;
    TListing vulnerabilityListing;
};

TProcessorFacts ReadProcessors(const TSystemRoot& root);

#endif
