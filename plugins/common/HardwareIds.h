#ifndef KYR_PLUGINS_COMMON_HARDWAREIDS_H
#define KYR_PLUGINS_COMMON_HARDWAREIDS_H

#include <map>
#include <string>
#include <string_view>

#include "SystemRoot.h"

/// The names that a list of ids has: pci.ids or usb.ids. Say first which are wanted, then read: the list is gone
/// through once, and the rest of it is passed over.
///
/// An id stands behind those that it belongs to, in the list's own digits: "8086" is a vendor, "8086/100e" a device of
/// it, "8086/100e/1028 002e" a subsystem; "C 02" is a class, "C 02/00" a subclass.
class THardwareIds {
public:
    /// Whose parents are wanted, too.
    void Want(const std::string& id);
    /// Looks for the list below the root only: what a copy of a machine shows must not depend on where it is read.
    void Read(const TSystemRoot& root, const std::string& fileName);
    void Parse(std::string_view text);
    /// Not present, if the list has no such id or there is no list.
    TFact<std::string> Name(const std::string& id) const;

private:
    std::map<std::string, std::string, std::less<>> fNames;
    std::string fList;  ///< its path
};

/// A number in the list's digits.
std::string HexText(int digits, unsigned number);

/// The name of what has a number: a number that could not be read has no name, for the same reason.
template <typename T>
TFact<std::string> NameOf(const TFact<T>& number, TFact<std::string> name) {
    return number ? name : TFact<std::string>::Missing(number.absence, number.source);
}

#endif
