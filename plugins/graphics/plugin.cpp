// The plugin "graphics": display controllers, their connectors, and the monitors there.
#include "DataPlugin.h"
#include "GraphicsFacts.h"
#include "InstanceReport.h"

namespace {

constexpr const char* kController = "MOLTA_DisplayController";
constexpr const char* kConnector = "MOLTA_VideoConnector";
constexpr const char* kMonitor = "MOLTA_Monitor";
constexpr const char* kSystemDevice = "MOLTA_SystemDisplayDevice";
constexpr const char* kControllerDevice = "MOLTA_DisplayControllerDevice";
constexpr const char* kControllerConnector = "MOLTA_ControllerVideoConnector";
constexpr const char* kConnectorMonitor = "MOLTA_ConnectorMonitor";

TInstancePath PathOf(const TDisplayController& controller) { return DevicePath(kController, controller.id); }
TInstancePath PathOf(const TVideoConnector& connector) { return DevicePath(kConnector, connector.id); }
TInstancePath PathOf(const TMonitor& monitor) { return DevicePath(kMonitor, monitor.connector); }

// As MOLTA_PCIDevice has it: "VGA compatible controller: Intel Corporation Alder Lake-UP3 GT1 [UHD Graphics]"
std::string Caption(const TDisplayController& controller) {
    const std::string kind = controller.names.className.ValueOr("Display controller");
    std::string name = controller.names.vendor.ValueOr("");
    if (const std::string model = controller.names.device.ValueOr(controller.model.ValueOr("")); !model.empty())
        name += (name.empty() ? "" : " ") + model;
    return name.empty() ? kind : kind + ": " + name;
}

void SetText(TInstanceReport& report, const char* property, const std::string& text) {
    if (!text.empty()) report.Set(property, text);
}

// A fact without a source is one that the device cannot have.
template <typename T>
void AddIfAny(TInstanceReport& report, const char* property, const TFact<T>& fact) {
    if (!fact.source.empty()) report.Add(property, fact);
}

kyrStatusCode ReportController(kyrIOHandle handle, const TDisplayController& controller) {
    TInstanceReport report(handle, PathOf(controller));
    report.Set("Caption", Caption(controller));
    report.Set("Name", controller.id);
    SetText(report, "Card", controller.card);
    SetText(report, "RenderNode", controller.renderNode);
    AddIfAny(report, "Manufacturer", controller.names.vendor);
    report.Add("Model", controller.model);
    report.Add("Driver", controller.driver);
    AddIfAny(report, "Primary", controller.isPrimary);
    AddIfAny(report, "VideoMemory", controller.videoMemory);
    AddIfAny(report, "VisibleVideoMemory", controller.visibleMemory);
    AddIfAny(report, "SystemMemoryLimit", controller.systemMemory);
    AddIfAny(report, "ApertureSize", controller.aperture);
    AddIfAny(report, "VideoBIOSVersion", controller.videoBios);
    AddIfAny(report, "SerialNumber", controller.serialNumber);
    AddIfAny(report, "UUID", controller.uuid);
    return report.Finish();
}

kyrStatusCode ReportConnector(kyrIOHandle handle, const TVideoConnector& connector) {
    TInstanceReport report(handle, PathOf(connector));
    report.Set("Caption", "Connector " + connector.name);
    report.Set("Name", connector.name);
    report.Add("ConnectorType", connector.kind);
    report.Add("ConnectionStatus", connector.status);
    report.Add("Enabled", connector.isEnabled);
    report.Add("PowerState", connector.powerState);
    if (!connector.modes || !connector.modes->empty()) report.Add("Modes", connector.modes);
    if (connector.edidState || IsUnreadable(connector.edidState)) report.Add("EDIDState", connector.edidState);
    return report.Finish();
}

bool IsSameLetter(char a, char b) { return (a | 0x20) == (b | 0x20); }

// Many a model begins with the name of its maker: "DELL U2720Q".
bool BeginsAlike(std::string_view model, std::string_view maker) {
    const std::string_view word = model.substr(0, model.find(' '));
    return word.size() < model.size() && word.size() <= maker.size() &&
           std::equal(word.begin(), word.end(), maker.begin(), IsSameLetter);
}

std::string Caption(const TMonitor& monitor) {
    const std::string &model = monitor.edid->model, maker = monitor.maker.ValueOr(monitor.edid->manufacturerId);
    if (model.empty()) return maker.empty() ? "Monitor" : maker + " monitor";
    return maker.empty() || BeginsAlike(model, maker) ? model : maker + ' ' + model;
}

/// Reports what one EDID tells.
class TEdidReport {
public:
    TEdidReport(TInstanceReport& report, const TFact<TEdid>& edid) : fReport(report), fEdid(edid) {}

    void Report() {
        AddIdentity();
        AddPicture();
        Add("InputType", uint16_t(fEdid->isDigital ? 2 : 1));
        Add("DigitalInterface", fEdid->digitalInterface);
        Add("BitsPerColor", fEdid->bitsPerColor);
        Add("Gamma", fEdid->gamma);
        Add("EDIDVersion", fEdid->version);
        Add("EDIDState", static_cast<uint16_t>(fEdid->state));
        Add("EDIDExtensions", fEdid->extensions);
        if (!fEdid->extensionKinds.empty()) Add("EDIDExtensionTypes", fEdid->extensionKinds);
    }

private:
    template <typename T>
    void Add(const char* property, const T& value) {
        fReport.Add(property, TFact<T>::Of(value, fEdid.source));
    }
    template <typename T>
    void Add(const char* property, const std::optional<T>& value) {
        if (value) Add(property, *value);
    }
    void AddText(const char* property, const std::string& text) {
        if (!text.empty()) Add(property, text);
    }

    void AddIdentity() {
        const std::string number = fEdid->idSerialNumber ? std::to_string(*fEdid->idSerialNumber) : "";
        AddText("ManufacturerID", fEdid->manufacturerId);
        AddText("Model", fEdid->model);
        Add("ProductCode", fEdid->productCode);
        AddText("SerialNumber", fEdid->serialNumber.empty() ? number : fEdid->serialNumber);
        Add("IDSerialNumber", fEdid->idSerialNumber);
        if (!fEdid->otherTexts.empty()) Add("OtherTexts", fEdid->otherTexts);
        Add("ManufactureWeek", fEdid->week);
        Add("ManufactureYear", fEdid->year);
        Add("ModelYear", fEdid->modelYear);
    }

    void AddPicture() {
        Add("ScreenWidth", fEdid->width);
        Add("ScreenHeight", fEdid->height);
        if (fEdid->width) Add("Diagonal", DiagonalInches(*fEdid->width, *fEdid->height));
        if (!fEdid->timing) return;
        Add("HorizontalResolution", fEdid->timing->width);
        Add("VerticalResolution", fEdid->timing->height);
        if (fEdid->timing->refresh > 0) Add("RefreshRate", fEdid->timing->refresh);
        Add("Interlaced", fEdid->timing->interlaced);
    }

    TInstanceReport& fReport;
    const TFact<TEdid>& fEdid;
};

kyrStatusCode ReportMonitor(kyrIOHandle handle, const TMonitor& monitor) {
    TInstanceReport report(handle, PathOf(monitor));
    report.Set("Caption", Caption(monitor));
    report.Set("Name", monitor.connector.substr(monitor.connector.rfind('/') + 1));
    report.Add("Manufacturer", monitor.maker);
    TEdidReport(report, monitor.edid).Report();
    return report.Finish();
}

kyrStatusCode ReportControllers(kyrIOHandle handle, const TGraphicsFacts& facts) {
    return ReportEach(handle, facts.controllers, ReportController);
}
kyrStatusCode ReportConnectors(kyrIOHandle handle, const TGraphicsFacts& facts) {
    return ReportEach(handle, facts.connectors, ReportConnector);
}
kyrStatusCode ReportMonitors(kyrIOHandle handle, const TGraphicsFacts& facts) {
    return ReportEach(handle, facts.monitors, ReportMonitor);
}

kyrStatusCode ReportSystemDisplayDevices(kyrIOHandle handle, const TGraphicsFacts& facts) {
    const auto report = [handle](const auto& devices) {
        return ReportSystemDevices(handle, kSystemDevice, devices, [](const auto& device) { return PathOf(device); });
    };
    kyrStatusCode status = report(facts.controllers);
    if (status == kyrStatusOK) status = report(facts.connectors);
    return status == kyrStatusOK ? report(facts.monitors) : status;
}

kyrStatusCode ReportControllerDevices(kyrIOHandle handle, const TGraphicsFacts& facts) {
    return ReportEach(facts.controllers, [handle](const TDisplayController& controller) {
        return ReportBusDevice(handle, kControllerDevice, controller.busDevice, PathOf(controller));
    });
}

kyrStatusCode ReportControllerConnectors(kyrIOHandle handle, const TGraphicsFacts& facts) {
    return ReportEach(facts.connectors, [handle](const TVideoConnector& connector) {
        return ReportAssociation(handle, kControllerConnector, "Antecedent",
                                 DevicePath(kController, connector.controller), "Dependent", PathOf(connector));
    });
}

kyrStatusCode ReportConnectorMonitors(kyrIOHandle handle, const TGraphicsFacts& facts) {
    return ReportEach(facts.monitors, [handle](const TMonitor& monitor) {
        return ReportAssociation(handle, kConnectorMonitor, "Antecedent", DevicePath(kConnector, monitor.connector),
                                 "Dependent", PathOf(monitor));
    });
}

TListing Cards(const TGraphicsFacts& facts) { return facts.cardListing; }
TListing Functions(const TGraphicsFacts& facts) { return facts.pciListing; }
TListing UsbDevices(const TGraphicsFacts& facts) { return facts.usbListing; }
TListing Edids(const TGraphicsFacts& facts) { return facts.edidListing; }

const TDataPlugin<TGraphicsFacts> gPlugin("graphics", ReadGraphics,
                                          {{kController, ReportControllers, {Cards, Functions}},
                                           {kConnector, ReportConnectors, {Cards}},
                                           {kMonitor, ReportMonitors, {Cards, Edids}},
                                           {kSystemDevice, ReportSystemDisplayDevices, {Cards, Functions, Edids}},
                                           {kControllerDevice, ReportControllerDevices, {Cards, Functions, UsbDevices}},
                                           {kControllerConnector, ReportControllerConnectors, {Cards}},
                                           {kConnectorMonitor, ReportConnectorMonitors, {Cards, Edids}}});

}  // namespace
