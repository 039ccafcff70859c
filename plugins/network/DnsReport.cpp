#include "NetworkReport.h"

namespace {

constexpr const char* kSettings = "MOLTA_DNSSettings";

TInstancePath SettingsPath(const TDnsSettings& settings) { return {kSettings, {{"InstanceID", settings.id}}}; }

// What a file does not say is no fault of it.
template <typename T>
void AddIfThere(TInstanceReport& report, const char* property, const TFact<T>& fact) {
    if (fact) report.Add(property, fact);
}

kyrStatusCode ReportSettings(kyrIOHandle handle, const TDnsSettings& settings) {
    TInstanceReport report(handle, SettingsPath(settings));
    report.Set("Caption", settings.adapter.empty() ? settings.id : "DNS of " + settings.adapter);
    report.Set("Program", static_cast<uint16_t>(settings.program));
    if (!settings.adapter.empty()) report.Set("InterfaceName", settings.adapter);
    AddIfThere(report, "LinkTarget", settings.linkTarget);
    report.Add("DNSServerAddresses", settings.servers);
    if (!settings.ignoredServers.empty()) report.Set("IgnoredServerAddresses", settings.ignoredServers);
    if (settings.servers) report.Set("LocalServer", settings.hasLocalServer);
    AddIfThere(report, "DomainName", settings.domain);
    AddIfThere(report, "DNSSuffixesToAppend", settings.searchDomains);
    AddIfThere(report, "Options", settings.options);
    return report.Finish();
}

}  // namespace

kyrStatusCode ReportDnsSettings(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(handle, facts.dnsSettings, ReportSettings);
}

kyrStatusCode ReportDnsOwners(kyrIOHandle handle, const TNetworkFacts& facts) {
    const bool isSystemKnown = IsKnownClass(handle, ComputerSystem().className.c_str());
    return ReportEach(facts.dnsSettings, [&](const TDnsSettings& settings) {
        if (settings.adapter.empty() && !isSystemKnown) return kyrStatusOK;
        const TInstancePath owner = settings.adapter.empty() ? ComputerSystem() : AdapterPath(settings.adapter);
        return ReportAssociation(handle, "MOLTA_DNSSettingsOwner", "Antecedent", owner, "Dependent",
                                 SettingsPath(settings));
    });
}
