#include "Netlink.h"

#include <arpa/inet.h>
#include <linux/netlink.h>

#include <algorithm>

namespace {

constexpr size_t kMaxType = 127;  // more than any message here uses

// Messages and attributes are aligned to four bytes.
size_t Aligned(size_t length) { return (length + 3) & ~size_t(3); }

void Skip(std::string_view& bytes, size_t length) { bytes.remove_prefix(std::min(Aligned(length), bytes.size())); }

}  // namespace

std::vector<TNetlinkMessage> ParseNetlinkMessages(std::string_view bytes) {
    std::vector<TNetlinkMessage> messages;
    for (;;) {
        std::string_view rest = bytes;
        const auto header = TakeStruct<nlmsghdr>(rest);
        if (!header || header->nlmsg_len < sizeof(nlmsghdr) || header->nlmsg_len > bytes.size()) return messages;
        messages.push_back({header->nlmsg_type, rest.substr(0, header->nlmsg_len - sizeof(nlmsghdr))});
        Skip(bytes, header->nlmsg_len);
    }
}

std::optional<TNetlinkAttribute> TakeAttribute(std::string_view& bytes) {
    std::string_view rest = bytes;
    const auto header = TakeStruct<nlattr>(rest);
    if (!header || header->nla_len < sizeof(nlattr) || header->nla_len > bytes.size()) return std::nullopt;
    Skip(bytes, header->nla_len);
    return TNetlinkAttribute{size_t(header->nla_type & NLA_TYPE_MASK),
                             rest.substr(0, header->nla_len - sizeof(nlattr))};
}

TNetlinkAttributes::TNetlinkAttributes(std::string_view bytes) {
    while (const std::optional<TNetlinkAttribute> attribute = TakeAttribute(bytes)) {
        if (attribute->type >= fAttributes.size()) fAttributes.resize(std::min(attribute->type, kMaxType) + 1);
        if (attribute->type <= kMaxType) fAttributes[attribute->type] = attribute->bytes;
    }
}

std::optional<std::string_view> TNetlinkAttributes::Find(size_t type) const {
    return type < fAttributes.size() ? fAttributes[type] : std::nullopt;
}

std::optional<std::string> TNetlinkAttributes::Text(size_t type) const {
    const std::optional<std::string_view> bytes = Find(type);
    if (!bytes) return std::nullopt;
    return std::string(bytes->substr(0, bytes->find('\0')));
}

std::optional<std::string> TNetlinkAttributes::Address(size_t type, int family) const {
    return AddressText(family, Find(type).value_or(""));
}

std::optional<std::string> TNetlinkAttributes::HardwareAddress(size_t type) const {
    constexpr const char* kDigits = "0123456789abcdef";
    const std::string_view bytes = Find(type).value_or("");
    if (bytes.empty()) return std::nullopt;
    std::string text;
    for (const char c : bytes) {
        const unsigned byte = static_cast<unsigned char>(c);
        if (!text.empty()) text += ':';
        text += {kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return text;
}

std::optional<std::string> AddressText(int family, std::string_view bytes) {
    char text[INET6_ADDRSTRLEN];
    const size_t length = family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    if (bytes.size() != length || inet_ntop(family, bytes.data(), text, sizeof text) == nullptr) return std::nullopt;
    return text;
}
