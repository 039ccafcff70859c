#include "HardwareIds.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr const char* kFolders[] = {"/usr/share/misc/", "/usr/share/hwdata/"};

}  // namespace

void THardwareIds::Want(const std::string& id) {
    for (size_t end = 0; end != std::string::npos;) {
        end = id.find('/', end + 1);
        fNames.emplace(id.substr(0, end), "");
    }
}

void THardwareIds::Read(const TSystemRoot& root, const std::string& fileName) {
    fList = kFolders[0] + fileName;
    if (fNames.empty()) return;
    for (const char* const folder : kFolders) {
        const TFact<std::string> list = root.ReadFile(folder + fileName);
        if (!list) continue;
        fList = list.source;
        Parse(*list);
        return;
    }
}

// A line is "id  name", indented by one tab for each parent; the parents are the nearest lines before it with fewer
// tabs.
void THardwareIds::Parse(std::string_view text) {
    std::vector<std::string> parents;
    for (size_t end = 0; !text.empty(); text.remove_prefix(std::min(end + 1, text.size()))) {
        end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        const size_t depth = line.find_first_not_of('\t');
        if (depth == std::string_view::npos || depth > parents.size() || line[depth] == '#') continue;
        parents.resize(depth);
        const size_t gap = line.find("  ", depth);
        if (gap == std::string_view::npos) continue;
        std::string id = depth == 0 ? "" : parents.back() + '/';
        id += line.substr(depth, gap - depth);
        const auto found = fNames.find(id);
        if (found == fNames.end()) continue;
        if (found->second.empty()) found->second = Trim(line.substr(gap));
        parents.push_back(std::move(id));
    }
}

TFact<std::string> THardwareIds::Name(const std::string& id) const {
    const auto found = fNames.find(id);
    if (found == fNames.end() || found->second.empty())
        return TFact<std::string>::Missing(EAbsence::eNotPresent, fList);
    return TFact<std::string>::Of(found->second, fList);
}

std::string HexText(int digits, unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, number);
    return text;
}
