#include "Peers.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#ifdef KYR_BENCH_PUGIXML
#include <pugixml.hpp>
#endif
#ifdef KYR_BENCH_EXPAT
#include <expat.h>
#endif
#ifdef KYR_BENCH_LIBXML2
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#endif

namespace {

[[maybe_unused]] void Require(bool parsed, const char* peer) {
    if (parsed) return;
    std::fprintf(stderr, "kyr-bench: %s refuses the document\n", peer);
    std::exit(1);
}

}  // namespace

#ifdef KYR_BENCH_PUGIXML
void ParseWithPugixml(char* text, std::size_t size) {
    pugi::xml_document document;
    Require(document.load_buffer_inplace(text, size), "pugixml");
}
#endif

#ifdef KYR_BENCH_EXPAT
void ParseWithExpat(const std::string& document) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
    // In pieces, like a program that reads a file; expat would copy one large text.
    constexpr std::size_t kPiece = 65'536;
    for (std::size_t at = 0; at < document.size(); at += kPiece) {
        const std::size_t size = std::min(kPiece, document.size() - at);
        const int isLast = at + size == document.size();
        Require(XML_Parse(parser, document.data() + at, static_cast<int>(size), isLast) == XML_STATUS_OK, "expat");
    }
    XML_ParserFree(parser);
}
#endif

#ifdef KYR_BENCH_LIBXML2
void ParseWithLibxml2Sax(const std::string& document) {
    xmlSAXHandler handlers = {};
    handlers.initialized = XML_SAX2_MAGIC;
    handlers.startElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*, int, const xmlChar**, int, int,
                                 const xmlChar**) {};
    handlers.endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
    handlers.characters = [](void*, const xmlChar*, int) {};
    Require(xmlSAXUserParseMemory(&handlers, nullptr, document.data(), static_cast<int>(document.size())) == 0,
            "libxml2");
}

std::shared_ptr<void> BuildLibxml2Tree(const std::string& document) {
    xmlDocPtr tree =
        xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr, XML_PARSE_HUGE);
    Require(tree != nullptr, "libxml2");
    return {tree, [](void* gone) { xmlFreeDoc(static_cast<xmlDocPtr>(gone)); }};
}
#endif
