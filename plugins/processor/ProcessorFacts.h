#ifndef KYR_PLUGINS_PROCESSOR_PROCESSORFACTS_H
#define KYR_PLUGINS_PROCESSOR_PROCESSORFACTS_H

#include "SystemRoot.h"

/// What the kernel schedules on, which it numbers and calls a CPU.
struct TThread {
    uint32_t number;
    TFact<bool> isOnline;
    TFact<uint32_t> clock = {};       ///< in megahertz
    std::optional<size_t> core = {};  ///< index; none of a thread that is not online
};

enum class ECoreType : uint16_t { ePerformance = 2, eEfficiency = 3 };

/// Only cores with a thread that is online are known.
struct TCore {
    std::string name;  ///< unique in the machine
    size_t package;    ///< index
    std::vector<uint32_t> threads;
    TFact<uint32_t> id;           ///< by the kernel's count within the package, or a part of it
    TFact<ECoreType> type;        ///< without a source where all cores are alike
    TFact<uint32_t> lowestClock;  ///< in megahertz
    TFact<uint32_t> highestClock;
};

/// What sits in one socket.
struct TPackage {
    uint32_t id;
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
    TFact<uint16_t> dataWidth;  ///< in bits, as the others
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
    TFact<uint64_t> memorySize;  ///< in kilobytes
    TFact<uint64_t> freeMemory;
    TFact<std::vector<uint32_t>> distances;
    std::vector<size_t> packages;  ///< indices
};

struct TVulnerability {
    std::string name;
    TFact<std::string> state;
};

/// There is at least one package.
struct TProcessorFacts {
    std::vector<TPackage> packages;
    std::vector<TCore> cores;
    std::vector<TThread> threads;  ///< by number
    std::vector<TCache> caches;
    std::vector<TNumaNode> nodes;
    std::vector<TVulnerability> vulnerabilities;

    TListing threadListing;
    TListing cacheListing;
    TListing nodeListing;
    TListing vulnerabilityListing;
};

TProcessorFacts ReadProcessors(const TSystemRoot& root);

#endif
