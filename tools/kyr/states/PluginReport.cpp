#include "states/PluginReport.h"

#include <algorithm>

#include "kyr/kyrPlugin.h"

namespace {

constexpr size_t kMostText = 4096;

bool StartsWith(const std::string& text, const std::string& start) { return text.compare(0, start.size(), start) == 0; }

// The name that stands in the text behind a mark.
std::string NameBehind(const std::string& text, const std::string& mark) {
    const size_t start = text.find(mark);
    if (start == std::string::npos) return "";
    const size_t end = text.find_first_of(" :)", start + mark.size());
    return text.substr(start + mark.size(), end - start - mark.size());
}

// The class that a line of the core speaks of, if it does.
std::string ClassIn(const std::string& text) {
    for (const char* mark : {"CIM class ", "GetClass("})
        if (const std::string name = NameBehind(text, mark); !name.empty()) return name;
    return StartsWith(text, "Instance ") ? NameBehind(text, "Instance ") : "";
}

std::string Shortened(const std::string& text) {
    return text.size() <= kMostText ? text : text.substr(0, kMostText) + "...";
}

// That a call failed is known already.
bool IsOfFailedCall(const TLogLine& line) {
    return line.core && StartsWith(line.text, "Plugin ") && line.text.find(" threw exception ") != std::string::npos;
}

// A plugin begins a line that speaks of a class with the name of the class and a colon.
std::string ClassInFront(const std::string& text) {
    const size_t colon = text.find(": ");
    return colon == std::string::npos ? "" : text.substr(0, colon);
}

}  // namespace

void TPluginReport::Read(const TLogLine& line) {
    if (line.severity > kyrLogWarning || IsOfFailedCall(line)) return;
    notes.push_back({line.core ? ClassIn(line.text) : ClassInFront(line.text), line.severity, Shortened(line.text)});
}

const TPluginFacts* TPluginReport::FindOwner() const {
    const auto reads = [](const TPluginFacts& plugin) {
        return plugin.initialised && (plugin.type == kyrPluginDataCollector || plugin.type == kyrPluginDocumentOnly);
    };
    const auto found = std::find_if(plugins.begin(), plugins.end(), reads);
    return found == plugins.end() ? nullptr : &*found;
}

const TPass* TPluginReport::FindPass(const std::string& className) const {
    for (const TPass& pass : passes)
        if (std::find(pass.asked.begin(), pass.asked.end(), className) != pass.asked.end()) return &pass;
    return nullptr;
}
