// The one operation of a container that needs the reader, which stands above the model.

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
