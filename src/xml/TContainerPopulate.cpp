// The only operation of TContainer that needs the parser. It is defined here because the model is a layer below xml.

#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "platform/CoreLog.h"
#include "xml/DocumentFile.h"
#include "xml/TCIMXMLParser.h"

std::vector<TCIMClass*> TContainer::PopulateContainerFromFile(const std::string& path) {
    const TDocumentFile document(path);
    TCIMXMLParser parser(this);
    try {
        parser.Parse(document.GetText());
    } catch (const TKYRException& e) {
        LogAndThrow(e.fCode, "Previous error was while parsing file '" + path + "'");
    }
    return parser.GetClassesCollected();
}
