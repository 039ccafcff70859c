#ifndef KYR_PLUGINS_GRAPHICS_GRAPHICSFACTS_H
#define KYR_PLUGINS_GRAPHICS_GRAPHICSFACTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "BusDevice.h"
#include "Edid.h"
#include "SystemRoot.h"

/// Names of a device on a PCI bus, from pci.ids.
struct TPciNames {
    TFact<std::string> className;
    TFact<std::string> vendor;
    TFact<std::string> device;
};

/// A device with a DRM driver, or of the class of display controllers on a PCI bus. A fact without a source is one that
/// devices of other drivers have.
struct TDisplayController {
    std::string id;    ///< its address on the bus, such as "0000:00:02.0"; otherwise the name of the device
    std::string card;  ///< "card0"; empty without a DRM driver
    std::string renderNode;
    TBusDevice busDevice;
    TPciNames names;
    TFact<std::string> model;
    TFact<std::string> driver;
    TFact<bool> isPrimary;
    TFact<uint64_t> videoMemory;    ///< in bytes, like those that follow
    TFact<uint64_t> visibleMemory;  ///< the part of it that processors can address
    TFact<uint64_t> systemMemory;   ///< what it may use of the memory of the system
    TFact<uint64_t> aperture;
    TFact<std::string> videoBios;
    TFact<std::string> serialNumber;
    TFact<std::string> uuid;
};

struct TVideoConnector {
    std::string id;          ///< controller and name
    std::string name;        ///< "HDMI-A-1"
    std::string controller;  ///< the id
    TFact<uint16_t> kind;
    TFact<uint16_t> status;
    TFact<bool> isEnabled;
    TFact<uint16_t> powerState;
    TFact<std::vector<std::string>> modes;
    TFact<uint16_t> edidState;
};

struct TMonitor {
    std::string connector;     ///< the id
    TFact<TEdid> edid;         ///< always there
    TFact<std::string> maker;  ///< from pnp.ids
};

struct TGraphicsFacts {
    std::vector<TDisplayController> controllers;
    std::vector<TVideoConnector> connectors;
    std::vector<TMonitor> monitors;
    TListing cardListing;
    TListing pciListing;
    TListing usbListing;
    TListing edidListing;
};

TGraphicsFacts ReadGraphics(const TSystemRoot& root);

/// The number of a connector's type in the kernel, by its name without the number at the end: "HDMI-A" is 11.
std::optional<uint16_t> ConnectorKind(std::string_view name);
/// The largest prefetchable range of memory in a device's file "resource".
std::optional<uint64_t> LargestAperture(std::string_view resource);
/// The name of a maker in the text of pnp.ids.
std::optional<std::string> MakerName(std::string_view list, std::string_view id);

#endif
