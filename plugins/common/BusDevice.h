#ifndef KYR_PLUGINS_COMMON_BUSDEVICE_H
#define KYR_PLUGINS_COMMON_BUSDEVICE_H

#include <string>
#include <string_view>

#include "Fact.h"

class TSystemRoot;

/// The PCI function or USB device that another device belongs to. At most one of the two is set.
struct TBusDevice {
    std::string pciAddress;  ///< such as "0000:00:1f.6"
    std::string usbId;       ///< such as "1-1.2"
};

/// The nearest bus device above the last component of a path in /sys/devices, to which entries of /sys/class link.
TBusDevice ParseBusDevice(std::string_view link);
/// The same, but empty if it is not listed in /sys/bus: it is not reported then, and must not be referred to.
TBusDevice FindBusDevice(const TSystemRoot& root, std::string_view link);
/// Whether the devices in /sys/bus/pci and /sys/bus/usb can be listed.
TListing ReadBusListing(const TSystemRoot& root);
/// The second last component of such a path, which is the parent device. Empty if there is none.
std::string ParentName(std::string_view link);

#endif
