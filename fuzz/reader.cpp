// The CIM-XML parser. The input is a document; a document of odd length is parsed in TR907 mode, in which instance
// properties have the type of their declarations.
#include <algorithm>
#include <cctype>
#include <cstdint>

#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "support/ContainerWalk.h"
#include "support/Documents.h"
#include "support/FuzzSupport.h"
#include "xml/TCIMXMLParser.h"

namespace {

bool AreSameButForCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return tolower(static_cast<unsigned char>(x)) == tolower(static_cast<unsigned char>(y));
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    if (!IsReadable(document)) return 0;
    const TRunLog log;
    TContainer container;
    TDocumentText text(document);
    TCIMXMLParser parser(&container);
    if (size % 2 != 0) parser.SetTR907Mode();
    const kyrStatusCode status = StatusOf([&] { parser.Parse(text.Begin()); });
    if (status == kyrStatusOK)
        Require(AreSameButForCase(text.Text(), document), "reading changes nothing but the case of attribute names");
    else
        Require(!log.Entries().empty() && log.Entries().back().severity == kyrLogError, "a refusal is logged");
    for (const TCIMClass* cls : parser.GetClassesCollected())
        Require(IsFoundUnderItsName(*cls), "a class collected is in the container");
    WalkContainer(container, true);
    return 0;
}
