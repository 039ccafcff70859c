#ifndef READERSUPPORT_H
#define READERSUPPORT_H

#include <string>
#include <vector>

#include "kyr/TContainer.h"
#include "support/TestSupport.h"
#include "xml/TCIMXMLParser.h"

/// Reads documents and tells what came of them. All are read behind a common beginning, which declares some qualifiers
/// and the classes A (key Id string, N uint32, When datetime, Tags string array), B (a subclass) and L (an association
/// of two A).
class ReaderTest : public LoggedTest {
protected:
    struct TCase {
        std::string content;  // of a DECLGROUP
        std::string outcome;
    };

    ReaderTest();

    /// What came of a document, joined by "; ": the lines in the log, the name of the status if it failed, and a line
    /// for each new object. "!" and a message stands for the two lines and the status of a refusal.
    std::string Read(const std::string& document, bool tr907Mode = false);
    std::string ReadGroup(const std::string& content, bool tr907Mode = false);
    void Expect(const std::vector<TCase>& cases, bool tr907Mode = false);

    TContainer fContainer;
    std::vector<std::string> fCollected;  // names of the classes that the last document added

private:
    std::vector<std::string> NewObjects();

    std::vector<std::string> fObjects;
};

// Pieces of documents.
std::string Class(const std::string& name, const std::string& content, const std::string& superclass = "A");
std::string Instance(const std::string& className, const std::string& content);
/// An instance of A with the key "k".
std::string OfA(const std::string& content);

#endif
