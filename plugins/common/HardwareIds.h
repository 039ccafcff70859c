#ifndef KYR_PLUGINS_COMMON_HARDWAREIDS_H
#define KYR_PLUGINS_COMMON_HARDWAREIDS_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// The names in pci.ids or usb.ids. Call Want for each id first, then Read, which goes through the list once and keeps
/// only the wanted names.
///
/// An id is written with its parents, in the digits of the list: "8086" is a vendor, "8086/100e" its device,
/// "8086/100e/1028 002e" a subsystem; "C 02" is a class, "C 02/00" a subclass.
class THardwareIds {
public:
    /// Includes the parents of the id.
    void Want(const std::string& id);
    /// Reads the list of that machine, never of the running one: the inventory of a recorded machine must not depend on
    /// where it is made.
    void Read(const TSystemRoot& root, const std::string& fileName);
    void Parse(std::string_view text);
    /// Not present if there is no list or it lacks the id.
    TFact<std::string> Name(const std::string& id) const;

private:
    void ParseLine(std::string_view line, size_t depth, std::vector<std::string>& parents);

    std::map<std::string, std::string, std::less<>> fNames;
    std::string fList;  ///< its path
};

/// A number in the hexadecimal digits of the lists.
std::string HexText(int digits, unsigned number);

/// The name, or if the number that it belongs to is missing, the reason of that.
template <typename T>
TFact<std::string> NameOf(const TFact<T>& number, TFact<std::string> name) {
    return number ? name : TFact<std::string>::Missing(number.absence, number.source);
}

#endif
