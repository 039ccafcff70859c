#include "Failures.h"

#include <tuple>

#include "Output.h"

bool TFailure::operator<(const TFailure& other) const {
    return std::tie(plugin, className, reason) < std::tie(other.plugin, other.className, other.reason);
}

void TFailures::Add(const TFailure& failure) {
    const auto [position, isNew] = fFailures.emplace(failure, 0);
    if (isNew) fOrder.push_back(&*position);
    ++position->second;
}

void TFailures::Print() const {
    for (const auto* entry : fOrder) {
        const auto& [failure, count] = *entry;
        std::string line = failure.plugin.empty() ? "base document" : "plugin " + failure.plugin;
        if (!failure.className.empty()) line += ", class " + failure.className;
        line += ": " + failure.reason;
        if (count > 1) line += " (" + std::to_string(count) + " times)";
        Complain(line);
    }
}
