#include "FileSystems.h"
#include "Mounts.h"

namespace {

// Each line after the headings begins with a path.
std::string PathIn(std::string_view line) {
    if (line.substr(0, 1) != "/") return "";
    return ParseSwapPath(line.substr(0, line.find_first_of(" \t"))).path;
}

}  // namespace

void ReadSwaps(const TSystemRoot& root, TStorage& storage) {
    const TFact<std::string> file = NeverEmpty(root.ReadFile("/proc/swaps"));
    storage.swapListing = ListingOf(file);
    const std::string text = file.ValueOr("");
    std::map<std::string, std::string> names;
    for (const TBlockDevice* const device : EnumerateDevices(storage))
        for (const std::string& path : device->paths) names.emplace(path, device->name);
    for (const std::string_view line : Lines(text)) {
        const auto found = names.find(PathIn(line));
        if (found != names.end()) storage.swaps.push_back({found->first, found->second});
    }
}
