#ifndef KYR_PLUGINS_STORAGE_UDEV_H
#define KYR_PLUGINS_STORAGE_UDEV_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// The record of one device in the udev database: a file with lines such as "E:ID_FS_TYPE=ext4" (a property) and
/// "S:mapper/vg-root" (a link in /dev).
class TUdevRecord {
public:
    TUdevRecord() = default;
    explicit TUdevRecord(const TFact<std::string>& text);

    /// A property, with \xNN decoded.
    TFact<std::string> Find(const std::string& key) const;
    /// The same, but without a source if udev has a record of the device that lacks the property: then its absence is
    /// not reported.
    TFact<std::string> FindOptional(const std::string& key) const;
    bool Has(const std::string& key, std::string_view value) const;
    const std::vector<std::string>& Links() const { return fLinks; }

private:
    bool fRead = false;
    EAbsence fAbsence = EAbsence::eNotPresent;
    std::string fSource;
    std::map<std::string, std::string, std::less<>> fProperties;
    std::vector<std::string> fLinks;
};

/// The record of the block device "major:minor".
TUdevRecord ReadUdevRecord(const TSystemRoot& root, const std::string& number);
std::string DecodeUdevText(std::string_view text);

#endif
