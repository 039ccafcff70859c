#include "DomainXml.h"

#include <expat.h>

#include <memory>

#include "Text.h"

namespace {

constexpr size_t kLongestPath = 1000;
constexpr size_t kLongestText = 1000;

/// Where a text or an attribute stands, and what it is.
struct TPlace {
    std::string_view path;
    std::string_view attribute;  ///< empty: the text of the element
    std::string TDomain::*field;
};

constexpr TPlace kPlaces[] = {
    {"/domain", "type", &TDomain::type},        {"/domain/name", "", &TDomain::name},
    {"/domain/uuid", "", &TDomain::uuid},       {"/domain/os/type", "arch", &TDomain::architecture},
    {"/domain/memory", "", &TDomain::memory},   {"/domain/memory", "unit", &TDomain::memoryUnit},
    {"/domain/vcpu", "", &TDomain::processors}, {"/domstatus", "pid", &TDomain::process},
};

/// Takes the events of the XML parser.
class TDomainReader {
public:
    TDomainReader() : fParser(XML_ParserCreate(nullptr), XML_ParserFree) {
        XML_SetUserData(fParser.get(), this);
        XML_SetElementHandler(
            fParser.get(), [](void* self, const char* name, const char** pairs) { Of(self).Begin(name, pairs); },
            [](void* self, const char*) { Of(self).End(); });
        XML_SetCharacterDataHandler(fParser.get(), [](void* self, const char* text, int length) {
            Of(self).Add({text, static_cast<size_t>(length)});
        });
        XML_SetStartDoctypeDeclHandler(
            fParser.get(), [](void* self, const char*, const char*, const char*, int) { Of(self).Refuse(); });
    }

    std::optional<TDomain> Read(const std::string& document) {
        const XML_Status status =
            XML_Parse(fParser.get(), document.data(), static_cast<int>(document.size()), /*isFinal=*/1);
        const bool isNamed = !fDomain.name.empty() && fDomain.name.find('/') == std::string::npos;
        return status == XML_STATUS_OK && isNamed ? std::optional(fDomain) : std::nullopt;
    }

private:
    static TDomainReader& Of(void* self) { return *static_cast<TDomainReader*>(self); }

    void Refuse() { XML_StopParser(fParser.get(), XML_FALSE); }

    void Begin(std::string_view name, const char** pairs) {
        if (fPath.size() + name.size() > kLongestPath) return Refuse();
        fPath += '/';
        fPath += name;
        fText = Find("");
        for (; *pairs != nullptr; pairs += 2)
            if (std::string* const field = Find(pairs[0])) *field = std::string_view(pairs[1]).substr(0, kLongestText);
    }

    void End() {
        fPath.erase(fPath.rfind('/'));
        fText = nullptr;
    }

    void Add(std::string_view text) {
        if (fText != nullptr && fText->size() + text.size() <= kLongestText) *fText += text;
    }

    // The document of a virtual machine that runs has that of the virtual machine in it.
    std::string* Find(std::string_view attribute) {
        constexpr std::string_view kStatus = "/domstatus";
        std::string_view path = fPath;
        if (path.size() > kStatus.size() && path.substr(0, kStatus.size()) == kStatus)
            path.remove_prefix(kStatus.size());
        for (const TPlace& place : kPlaces)
            if (place.path == path && place.attribute == attribute) return &(fDomain.*place.field);
        return nullptr;
    }

    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> fParser;
    TDomain fDomain;
    std::string fPath;
    std::string* fText = nullptr;  ///< what the text that comes is added to
};

struct TUnit {
    std::string_view name;
    uint64_t bytes;
};

constexpr TUnit kUnits[] = {{"", 1 << 10},         {"b", 1},           {"bytes", 1},       {"KB", 1000},
                            {"k", 1 << 10},        {"KiB", 1 << 10},   {"MB", 1000000},    {"M", 1 << 20},
                            {"MiB", 1 << 20},      {"GB", 1000000000}, {"G", 1 << 30},     {"GiB", 1 << 30},
                            {"TB", 1000000000000}, {"T", 1ULL << 40},  {"TiB", 1ULL << 40}};

}  // namespace

std::optional<TDomain> ParseDomain(const std::string& document) { return TDomainReader().Read(document); }

std::optional<uint64_t> MemoryOf(const TDomain& domain) {
    const std::optional<uint64_t> number = ParseNumber<uint64_t>(domain.memory);
    for (const TUnit& unit : kUnits)
        if (number && unit.name == domain.memoryUnit && *number <= UINT64_MAX / unit.bytes) return *number * unit.bytes;
    return {};
}
