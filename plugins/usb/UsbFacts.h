#ifndef KYR_PLUGINS_USB_USBFACTS_H
#define KYR_PLUGINS_USB_USBFACTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "SystemRoot.h"

/// Class, subclass and protocol of a device or interface, and the name of the class in usb.ids.
struct TUsbClass {
    TFact<uint8_t> code;
    TFact<uint8_t> subclass;
    TFact<uint8_t> protocol;
    TFact<std::string> name;
};

struct TUsbInterface {
    TUsbClass usbClass;
    TFact<std::string> driver;
};

struct TUsbDevice {
    std::string id;          ///< bus and ports, such as "1-1.2"; "usb1" for a root hub
    std::string hub;         ///< the id of its hub; empty for a root hub
    std::string controller;  ///< of a root hub: the address of its PCI function; may be empty

    TFact<uint16_t> vendor;
    TFact<uint16_t> product;
    TFact<std::string> vendorName;   ///< from usb.ids
    TFact<std::string> productName;  ///< likewise
    TFact<std::string> manufacturerText;
    TFact<std::string> productText;
    TFact<std::string> serialNumber;
    TFact<std::string> release;
    TFact<std::string> version;
    TFact<uint64_t> speed;     ///< in bits per second
    TFact<uint32_t> maxPower;  ///< in milliamperes
    TFact<uint16_t> bus;
    TFact<uint16_t> number;
    TFact<uint8_t> ports;
    TUsbClass usbClass;
    std::vector<TUsbInterface> interfaces;
    TFact<std::vector<std::string>> firmwareIds;
};

struct TUsbFacts {
    std::vector<TUsbDevice> devices;
    TListing listing;
    TListing busListing;  ///< of the controllers
};

TUsbFacts ReadUsb(const TSystemRoot& root);

/// The hub of a device: "1-1.2" is plugged into "1-1", "1-1" into "usb1". Empty for a root hub.
std::string HubOf(const std::string& id);
/// Mbit/s such as "1.5", as bits per second.
std::optional<uint64_t> ParseUsbSpeed(std::string_view text);
/// "500mA"
std::optional<uint32_t> ParseMilliAmperes(std::string_view text);
/// bcdDevice: "7200" is the release "72.00".
std::optional<std::string> ParseRelease(std::string_view text);

#endif
