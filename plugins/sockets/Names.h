#ifndef KYR_PLUGINS_SOCKETS_NAMES_H
#define KYR_PLUGINS_SOCKETS_NAMES_H

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "SystemRoot.h"

/// Names by what they stand for, with the file that says so.
template <typename TKey>
struct TNames {
    TFact<std::map<TKey, std::string>> names;

    TFact<std::string> Of(const TKey& key) const {
        if (!names) return TFact<std::string>::Missing(names.absence, names.source);
        const auto found = names->find(key);
        if (found == names->end()) return TFact<std::string>::Missing(EAbsence::eNotPresent, names.source);
        return TFact<std::string>::Of(found->second, names.source);
    }
};

/// Of the users wanted, by their numbers, in /etc/passwd.
TNames<uint32_t> ReadUserNames(const TSystemRoot& root, const std::set<uint32_t>& wanted);
/// Of the services wanted, by port and protocol, such as "tcp", in /etc/services.
using TPortAndProtocol = std::pair<uint16_t, std::string>;
TNames<TPortAndProtocol> ReadPortNames(const TSystemRoot& root, const std::set<TPortAndProtocol>& wanted);

#endif
