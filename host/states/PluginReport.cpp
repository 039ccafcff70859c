#include "states/PluginReport.h"

#include <algorithm>

#include "base/Text.h"
#include "kyr/kyrPlugin.h"

namespace {

constexpr size_t kLongestMessage = 4096;

}  // namespace

// The core logs the failure of a data call right after it. TDataCall::failure has it already, so that line is dropped.
void TPluginReport::AddLogLine(const TLogLine& line) {
    const bool repeatsFailure = line.core && !dataCalls.empty() && dataCalls.back().failure;
    if (line.severity > kyrLogWarning || repeatsFailure) return;
    messages.push_back({"", line.severity, CutText(line.text, kLongestMessage), line.core});
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
