// Enclosures of disks that describe themselves (SES), and their bays.
#include "ChassisFacts.h"

namespace {

constexpr const char* kEnclosures = "/sys/class/enclosure";

THardware ReadEnclosure(const TSystemRoot& root, const std::string& name) {
    const std::string folder = std::string(kEnclosures) + '/' + name + '/';
    THardware enclosure;
    enclosure.tag = name;
    enclosure.properties = {{"Manufacturer", root.ReadText(folder + "device/vendor")},
                            {"Model", root.ReadText(folder + "device/model")},
                            {"FirmwareRevision", root.ReadText(folder + "device/rev")},
                            {"Identifier", root.ReadText(folder + "id")},
                            {"Components", root.ReadNumber<uint32_t>(folder + "components")}};
    const std::string model = enclosure.Text("Model");
    enclosure.caption = "Enclosure " + (model.empty() ? name : model);
    return enclosure;
}

std::vector<std::string> DisksIn(const TSystemRoot& root, const std::string& folder) {
    std::vector<std::string> disks;
    for (const std::string& name : root.Names(folder + "device/block"))
        if (root.Exists("/sys/class/block/" + name)) disks.push_back("/dev/" + name);
    return disks;
}

bool IsBay(const TSystemRoot& root, const std::string& folder) {
    const std::string type = root.ReadText(folder + "type").ValueOr("");
    return type == "device" || type == "array device";
}

// The files "status", "fault", "locate" and "power_status" are not read: each sends a command to the enclosure.
THardware ReadBay(const TSystemRoot& root, const std::string& enclosure, const std::string& name) {
    const std::string folder = std::string(kEnclosures) + '/' + enclosure + '/' + name + '/';
    THardware bay;
    bay.tag = enclosure + '/' + name;
    bay.caption = "Bay " + name;
    bay.owner = enclosure;
    bay.devices = DisksIn(root, folder);
    bay.properties = {{"BayName", TFact<std::string>::Of(name, kEnclosures)},
                      {"SlotNumber", root.ReadNumber<uint32_t>(folder + "slot")},
                      {"Populated", TFact<bool>::Of(root.Exists(folder + "device"), folder + "device")}};
    return bay;
}

}  // namespace

void ReadEnclosures(const TSystemRoot& root, TChassisFacts& facts) {
    const auto names = root.ListKind(kEnclosures, kEnclosures);
    facts.enclosureListing = root.CheckEntries(kEnclosures, names);
    facts.diskListing = ListingOf(root.ListKind("/sys/class/block", "/sys/class/block"));
    for (const std::string& enclosure : names.ValueOr({})) {
        facts.enclosures.push_back(ReadEnclosure(root, enclosure));
        const std::string folder = std::string(kEnclosures) + '/' + enclosure + '/';
        for (const std::string& name : root.Names(folder))
            if (IsBay(root, folder + name + '/')) facts.bays.push_back(ReadBay(root, enclosure, name));
    }
}
