// What the plugin "guests" reads: a document of libvirt, and JSON of container engines.
#include "DomainXml.h"
#include "JsonText.h"
#include "support/FuzzSupport.h"

namespace {

constexpr size_t kLongest = 1000;

void CheckDomain(const std::string& document) {
    const std::optional<TDomain> domain = ParseDomain(document);
    if (!domain) return;
    Require(!domain->name.empty(), "a virtual machine has a name");
    for (const std::string* text : {&domain->name, &domain->uuid, &domain->type, &domain->architecture, &domain->memory,
                                    &domain->memoryUnit, &domain->processors, &domain->process})
        Require(text->size() <= kLongest, "no text is longer than the limit");
    MemoryOf(*domain);
}

void CheckJson(const std::string& text) {
    const rapidjson::Document json = ParseJson(text);
    const rapidjson::Value* const created = FindMember(json, {"State", "Created"});
    Require(created == nullptr || json.IsObject(), "only objects have members");
    Require(FindText(json, {"Name"}).size() <= text.size(), "a text is no longer than the document");
    ParseTime(FindText(json, {"Created"}));
    ParseTime(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckDomain(text);
    CheckJson(text);
    return 0;
}
