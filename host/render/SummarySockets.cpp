#include "render/SummarySockets.h"

#include <algorithm>
#include <tuple>

#include "base/Text.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/SpokenNames.h"
#include "render/SummaryPieces.h"
#include "states/StateInstances.h"

namespace {

constexpr size_t kMostOpenPorts = 12;
constexpr size_t kMostLocalPorts = 6;
constexpr size_t kMostPrograms = 2;
constexpr uint64_t kTcp = 6;  // of MOLTA_ListeningSocket.Protocol

struct TPort {
    bool isTcp;
    uint64_t number;
    std::string text;

    bool operator<(const TPort& other) const {
        return std::tie(other.isTcp, number, text) < std::tie(isTcp, other.number, other.text);
    }
    bool operator==(const TPort& other) const { return text == other.text; }
};

// The programs, or the unit if they are not known.
std::string ProgramText(const TCIMInstance& socket) {
    std::vector<std::string> names = TextsOf(socket, "ProcessNames");
    for (std::string& name : names) name = CutText(VisibleText(name), 32);
    const std::string text = names.empty() ? SummaryValue(socket, "Unit") : FoldedTexts(names, kMostPrograms);
    return text.empty() ? "" : " (" + text + ")";
}

// Where it waits, unless that is all of the system.
std::string PlaceText(const TCIMInstance& socket) {
    const std::string interface = SummaryValue(socket, "InterfaceName"), address = SummaryValue(socket, "Address");
    const bool isAnywhere = address == "0.0.0.0" || address == "::";
    if (!isAnywhere) return " on " + address;
    return interface.empty() ? "" : " on " + interface;
}

TPort PortOf(const TCIMInstance& socket, bool isLocal) {
    const uint64_t protocol = SummaryNumber(socket, "Protocol");
    TPort port{protocol == kTcp, SummaryNumber(socket, "Port"), SummaryValue(socket, "Port")};
    if (!port.isTcp) port.text += '/' + LowerCase(SummaryValue(socket, "Protocol"));
    port.text += (isLocal ? "" : PlaceText(socket)) + ProgramText(socket);
    return port;
}

// IPv4 and IPv6 have each port of their own, mostly for the same program.
std::string TextFor(std::vector<TPort> ports, size_t most) {
    std::sort(ports.begin(), ports.end());
    ports.erase(std::unique(ports.begin(), ports.end()), ports.end());
    std::vector<std::string> texts;
    texts.reserve(ports.size());
    for (const TPort& port : ports) texts.push_back(port.text);
    const std::string more = texts.size() > most + 1 ? "; see show " + SpokenNameOf(kListeningSocketClass) : "";
    return FoldedTexts(texts, most) + more;
}

}  // namespace

std::vector<std::string> ListeningTexts(const TContainer& container) {
    std::vector<TPort> open, local;
    for (const TCIMInstance* socket : InstancesOf(container, kListeningSocketClass)) {
        const bool isLocal = HasBoolean(*socket, "LocalOnly", true);
        (isLocal ? local : open).push_back(PortOf(*socket, isLocal));
    }
    std::vector<std::string> lines;
    if (!open.empty()) lines.push_back(TextFor(open, kMostOpenPorts));
    if (!local.empty()) lines.push_back("only on this system: " + TextFor(local, kMostLocalPorts));
    return lines;
}
