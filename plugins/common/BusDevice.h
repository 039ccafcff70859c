#ifndef KYR_PLUGINS_COMMON_BUSDEVICE_H
#define KYR_PLUGINS_COMMON_BUSDEVICE_H

#include <string>
#include <string_view>

class TSystemRoot;

/// What a device is on or part of: a PCI function or a USB device, or neither. One name is empty at least.
struct TBusDevice {
    std::string pciAddress;  ///< such as "0000:00:1f.6"
    std::string usbId;       ///< such as "1-1.2"
};

/// The nearest one in the place that a name in /sys/class links to; the name itself is left out.
TBusDevice ParseBusDevice(std::string_view link);
/// The same, if its bus lists it: what is not listed is not reported, and nothing may refer to it.
TBusDevice FindBusDevice(const TSystemRoot& root, std::string_view link);
/// The second last part of such a place: the device that one in /sys/devices is behind. Empty if there is none.
std::string ParentName(std::string_view link);

#endif
