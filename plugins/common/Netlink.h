#ifndef KYR_PLUGINS_COMMON_NETLINK_H
#define KYR_PLUGINS_COMMON_NETLINK_H

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One netlink message without its header.
struct TNetlinkMessage {
    uint16_t type;
    std::string_view body;
};

/// The messages of a dump, up to a truncated one.
std::vector<TNetlinkMessage> ParseNetlinkMessages(std::string_view bytes);

/// Removes a kernel structure from the front of the bytes and returns it; nothing if they are too few.
template <typename T>
std::optional<T> TakeStruct(std::string_view& bytes) {
    if (bytes.size() < sizeof(T)) return std::nullopt;
    T structure;
    std::memcpy(&structure, bytes.data(), sizeof(T));
    bytes.remove_prefix(sizeof(T));
    return structure;
}

/// The type of an attribute, without its flags, and its bytes.
struct TNetlinkAttribute {
    size_t type;
    std::string_view bytes;
};

/// Removes the attribute at the front of the bytes and returns it; nothing if there is no whole one.
std::optional<TNetlinkAttribute> TakeAttribute(std::string_view& bytes);

/// The attributes that follow the structure of a message, by type; of several with one type, the last.
class TNetlinkAttributes {
public:
    explicit TNetlinkAttributes(std::string_view bytes);

    /// The bytes of an attribute, if there is one of this type.
    std::optional<std::string_view> Find(size_t type) const;
    template <typename T>
    std::optional<T> Number(size_t type) const {
        std::string_view bytes = Find(type).value_or("");
        return TakeStruct<T>(bytes);
    }
    /// Up to its first NUL.
    std::optional<std::string> Text(size_t type) const;
    /// An IP address of the family, as text.
    std::optional<std::string> Address(size_t type, int family) const;
    /// A link-layer address, such as "02:fc:00:00:00:01".
    std::optional<std::string> HardwareAddress(size_t type) const;

private:
    std::vector<std::optional<std::string_view>> fAttributes;
};

/// An IP address as text; nothing if the bytes are not as many as the family needs.
std::optional<std::string> AddressText(int family, std::string_view bytes);

#endif
