#include "Udev.h"

TUdevRecord::TUdevRecord(const TFact<std::string>& text) : fRead(text), fAbsence(text.absence), fSource(text.source) {
    if (!text) return;
    for (const std::string_view line : Lines(*text)) {
        const size_t equals = line.find('=');
        if (line.substr(0, 2) == "S:") fLinks.push_back("/dev/" + std::string(line.substr(2)));
        if (line.substr(0, 2) == "E:" && equals != std::string_view::npos)
            fProperties.emplace(line.substr(2, equals - 2), line.substr(equals + 1));
    }
}

TFact<std::string> TUdevRecord::Find(const std::string& key) const {
    const auto found = fProperties.find(key);
    if (found == fProperties.end()) return TFact<std::string>::Missing(fAbsence, fSource);
    std::string text(Trim(DecodeUdevText(found->second)));
    if (text.empty()) return TFact<std::string>::Missing(EAbsence::eNotPresent, fSource);
    return TFact<std::string>::Of(std::move(text), fSource);
}

TFact<std::string> TUdevRecord::FindOptional(const std::string& key) const {
    TFact<std::string> fact = Find(key);
    if (!fact && fRead) fact.source.clear();
    return fact;
}

bool TUdevRecord::Has(const std::string& key, std::string_view value) const {
    const auto found = fProperties.find(key);
    return found != fProperties.end() && found->second == value;
}

TUdevRecord ReadUdevRecord(const TSystemRoot& root, const std::string& number) {
    return TUdevRecord(root.ReadFile("/run/udev/data/b" + number));
}

std::string DecodeUdevText(std::string_view text) {
    std::string decoded;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto code = text.substr(i, 2) == "\\x" && text.size() >= i + 4
                              ? ParseNumber<unsigned char>(text.substr(i + 2, 2), 16)
                              : std::nullopt;
        decoded += code ? static_cast<char>(*code) : text[i];
        if (code) i += 3;
    }
    return decoded;
}
