#include "states/PluginLibrary.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <unordered_set>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "model/Qualifiers.h"
#include "states/LibraryPlace.h"

namespace {

using TNames = std::unordered_set<std::string>;

bool IsNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// The first word of the text that is one of the names; empty if there is none.
std::string FirstNameIn(const std::string& text, const TNames& names) {
    for (size_t end = 0; end < text.size();) {
        size_t start = end;
        while (start < text.size() && !IsNameCharacter(text[start])) ++start;
        end = start;
        while (end < text.size() && IsNameCharacter(text[end])) ++end;
        if (const std::string word = text.substr(start, end - start); names.count(word) != 0) return word;
    }
    return "";
}

std::string ClassOf(const TMessage& message, const TNames& names) {
    if (message.core) return FirstNameIn(message.text, names);
    const std::string start = message.text.substr(0, message.text.find(": "));
    return names.count(start) != 0 ? start : "";
}

std::string FullPathOf(const std::string& folder, const std::string& path) {
    return (std::filesystem::path(folder) / path).lexically_normal().string();
}

}  // namespace

std::string TPluginLibrary::Name() const { return PluginNameOf(path); }

std::string TPluginLibrary::FullPath() const { return FullPathOf(folder, path); }

std::string TPluginLibrary::FullDocumentPath() const {
    try {
        return FullPathOf(folder, TOSSpecific::BuildSpecificationPath(path));
    } catch (const TKYRException&) {
        return "";
    }
}

bool TPluginLibrary::Declares(const std::string& className) const {
    return std::any_of(classes.begin(), classes.end(),
                       [&](const TCIMClass* cls) { return cls->GetName() == className; });
}

std::string TPluginLibrary::FindUngranted(const TCIMClass& cls) const {
    for (const std::string& need : NeedsOf(cls))
        if ((NeedFor(need) & granted) == 0) return need;
    return "";
}

void TPluginLibrary::LeaveOutOptional(const TClassSelection& wanted) {
    if (wanted.IsSchemaOnly()) return;
    for (const TCIMClass* cls : classes) {
        const bool isGranted = !NeedsOf(*cls).empty() && FindUngranted(*cls).empty();
        if (IsOptional(*cls) && !isGranted && !wanted.IsNamed(cls->GetName())) leftOut.push_back(cls);
    }
}

bool TPluginLibrary::IsLeftOut(const TCIMClass& cls) const {
    return std::find(leftOut.begin(), leftOut.end(), &cls) != leftOut.end();
}

bool TPluginLibrary::IsLeftOut() const {
    return !leftOut.empty() && std::all_of(classes.begin(), classes.end(), [this](const TCIMClass* cls) {
        return cls->IsAbstract() || IsLeftOut(*cls);
    });
}

void TPluginLibrary::AssignMessagesToClasses() {
    TNames names;
    for (const TCIMClass* cls : classes) names.insert(cls->GetName());
    for (TMessage& message : report.messages)
        if (message.className.empty() && !message.IsOfReference()) message.className = ClassOf(message, names);
}

void TPluginLibrary::AssignMissingSources(TMissingSources& all) {
    for (const TCIMClass* cls : classes)
        if (TMissingSources::node_type sources = all.extract(cls->GetName())) missingSources.insert(std::move(sources));
}
