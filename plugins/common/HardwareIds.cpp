#include "HardwareIds.h"

#include <algorithm>
#include <cstdio>

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
// tabs. Most lines belong to a vendor that nobody wants: of those only the tabs and the end are looked at.
void THardwareIds::Parse(std::string_view text) {
    std::vector<std::string> parents;
    for (; !text.empty(); text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1)) {
        const size_t depth = std::min(text.find_first_not_of('\t'), text.size());
        if (depth > parents.size() || depth == text.size() || text[depth] == '#' || text[depth] == '\n') continue;
        ParseLine(text.substr(depth, text.find('\n') - depth), depth, parents);
    }
}

// Adds the id to the parents, if it is wanted.
void THardwareIds::ParseLine(std::string_view line, size_t depth, std::vector<std::string>& parents) {
    parents.resize(depth);
    const size_t gap = line.find("  ");
    if (gap == std::string_view::npos) return;
    std::string id = depth == 0 ? "" : parents.back() + '/';
    id += line.substr(0, gap);
    const auto found = fNames.find(id);
    if (found == fNames.end()) return;
    if (found->second.empty()) found->second = Trim(line.substr(gap));
    parents.push_back(std::move(id));
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
