#include "states/PluginReport.h"

#include <algorithm>

#include "base/Text.h"
#include "kyr/kyrPlugin.h"

namespace {

constexpr size_t kLongestMessage = 4096;

// More would hold up whoever looks for the messages of a class, and leave a saved file no room for others.
constexpr size_t kMostMessageBytes = size_t{256} << 10;
constexpr size_t kBesideText = 64;

}  // namespace

// The core logs the failure of a data call right after it. TDataCall::failure has it already, so that line is dropped.
void TPluginReport::AddLogLine(const TLogLine& line) {
    const bool repeatsFailure = line.core && !dataCalls.empty() && dataCalls.back().failure;
    if (line.severity > kyrLogWarning || repeatsFailure) return;
    const std::string text = CutText(line.text, kLongestMessage);
    messageBytes += text.size() + kBesideText;
    if (messageBytes > kMostMessageBytes) {
        end = {eFailed, ReasonFor(EReason::eTooMuchDelivered, "its log is cut off")};
        return;
    }
    messages.push_back({"", line.severity, text, line.core});
}

const TPluginInfo* TPluginReport::FindOwner() const {
    const auto usesDocument = [](const TPluginInfo& plugin) {
        return plugin.initialised && (plugin.type == kyrPluginDataCollector || plugin.type == kyrPluginDocumentOnly);
    };
    const auto found = std::find_if(plugins.begin(), plugins.end(), usesDocument);
    return found == plugins.end() ? nullptr : &*found;
}

const TDataCall* TPluginReport::FindDataCall(const std::string& className) const {
    for (const TDataCall& call : dataCalls)
        if (std::find(call.asked.begin(), call.asked.end(), className) != call.asked.end()) return &call;
    return nullptr;
}

std::string TPluginReport::FirstError() const {
    for (const TMessage& message : messages)
        if (message.severity == kyrLogError) return message.text;
    return "";
}
