#ifndef KYR_PLUGINS_GUESTS_DOMAINXML_H
#define KYR_PLUGINS_GUESTS_DOMAINXML_H

#include <cstdint>
#include <optional>
#include <string>

/// What a document of libvirt tells of a virtual machine. What it does not tell is empty.
struct TDomain {
    std::string name;
    std::string uuid;
    std::string type;  ///< such as "kvm"
    std::string architecture;
    std::string memory;
    std::string memoryUnit;
    std::string processors;
    std::string process;  ///< its number, if it is the document of one that runs
};

/// Nothing if it is no such document. One with a document type is refused, as libvirt writes none and entities could
/// make it any size.
std::optional<TDomain> ParseDomain(const std::string& document);
/// The memory in bytes; nothing if it is not a number or out of range, or the unit is not known.
std::optional<uint64_t> MemoryOf(const TDomain& domain);

#endif
