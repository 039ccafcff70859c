#ifndef KYR_PLUGINS_STORAGE_UDEV_H
#define KYR_PLUGINS_STORAGE_UDEV_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// What the device manager has stored of one device, in a file of lines such as "E:ID_FS_TYPE=ext4" (a property) and
/// "S:mapper/vg-root" (a link below /dev).
class TUdevRecord {
public:
    TUdevRecord() = default;
    explicit TUdevRecord(const TFact<std::string>& text);

    /// A property with its \xNN made characters.
    TFact<std::string> Find(const std::string& key) const;
    /// The same; but if the device manager knows the device and tells nothing, there is nothing to tell: no source.
    TFact<std::string> FindIfAny(const std::string& key) const;
    bool Has(const std::string& key, std::string_view value) const;
    const std::vector<std::string>& Links() const { return fLinks; }

private:
    bool fRead = false;
    EAbsence fAbsence = EAbsence::eNotPresent;
    std::string fSource;
    std::map<std::string, std::string, std::less<>> fProperties;
    std::vector<std::string> fLinks;
};

/// Of a block device, by its "major:minor".
TUdevRecord ReadUdevRecord(const TSystemRoot& root, const std::string& number);
std::string DecodeUdevText(std::string_view text);

#endif
