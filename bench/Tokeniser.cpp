#include "Tokeniser.h"

#include <map>
#include <stdexcept>
#include <string>

#include "xml/TXmlParser.h"

namespace {

class TSilentParser : public TXmlParser {
public:
    void StartElement(const char*, std::map<std::string, std::string>&) override {}
    void EndElement(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characters(const char*, unsigned int) override {}
    void notationDecl(const char*, const char*, const char*) override {}
    void FatalError(const char* message) override { throw std::runtime_error(message); }
};

}  // namespace

void Tokenise(char* text) { TSilentParser().Parse(text); }
