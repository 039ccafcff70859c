#ifndef KYR_PLUGINS_NETWORK_NETLINK_H
#define KYR_PLUGINS_NETWORK_NETLINK_H

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One message of the kernel's, without its header.
struct TNetlinkMessage {
    uint16_t type;
    std::string_view body;
};

/// The messages that stand one behind the other, up to one that is broken off.
std::vector<TNetlinkMessage> ParseNetlinkMessages(std::string_view bytes);

/// A structure of the kernel's at the front of the bytes, taken off them. Nothing, if there are too few.
template <typename T>
std::optional<T> TakeStruct(std::string_view& bytes) {
    if (bytes.size() < sizeof(T)) return std::nullopt;
    T structure;
    std::memcpy(&structure, bytes.data(), sizeof(T));
    bytes.remove_prefix(sizeof(T));
    return structure;
}

/// The attributes behind a message's structure, by type; of several of one type the last.
class TNetlinkAttributes {
public:
    explicit TNetlinkAttributes(std::string_view bytes);

    /// The bytes, if there is such an attribute.
    std::optional<std::string_view> Find(size_t type) const;
    template <typename T>
    std::optional<T> Number(size_t type) const {
        std::string_view bytes = Find(type).value_or("");
        return TakeStruct<T>(bytes);
    }
    /// Up to its first NUL.
    std::optional<std::string> Text(size_t type) const;
    /// An internet address of the family.
    std::optional<std::string> Address(size_t type, int family) const;
    /// The address of an interface in its network: "02:fc:00:00:00:01".
    std::optional<std::string> HardwareAddress(size_t type) const;

private:
    std::vector<std::optional<std::string_view>> fAttributes;
};

/// An address of so many bytes as its family has, as text.
std::optional<std::string> AddressText(int family, std::string_view bytes);

#endif
