#include "kyr/TKYRException.h"
#include "model/DocumentFile.h"
#include "model/TContainerImpl.h"
#include "platform/CoreLog.h"
#include "xml/TCIMXMLParser.h"

std::vector<TCIMClass*> TContainerImpl::PopulateContainerFromFile(const std::string& path) {
    const TDocumentFile document(path);
    TCIMXMLParser parser(fHandle);
    try {
        parser.Parse(document.GetText());
    } catch (const TKYRException& e) {
        LogAndThrow(e.fCode, "Previous error was while parsing file '" + path + "'");
    }
    return parser.GetClassesCollected();
}
