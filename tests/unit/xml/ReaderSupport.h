#ifndef READERSUPPORT_H
#define READERSUPPORT_H

#include "support/SchemaBuilder.h"
#include "xml/TCIMXMLParser.h"

/// Reads documents and tells what came of them. All are read behind a common beginning, which declares some qualifiers
/// and the classes A (key Id string, N uint32, When datetime, Tags string array), B (a subclass) and L (an association
/// of two A).
class TReader {
public:
    explicit TReader(LogCapture& log);

    /// What came of a document, joined by "; ": the lines in the log, the name of the status if it failed, and a line
    /// for each new object. "!" and a message stands for the two lines and the status of a refusal.
    std::string Read(const std::string& document, bool tr907Mode = false);
    std::string ReadGroup(const std::string& content, bool tr907Mode = false);

    TContainer fContainer;
    std::vector<std::string> fCollected;  // names of the classes that the last document added

private:
    std::vector<std::string> NewObjects();

    LogCapture& fReaderLog;
    std::vector<std::string> fObjects;
};

class ReaderTest : public LoggedTest, public TReader {
protected:
    ReaderTest() : TReader(fLog) {}
};

// Pieces of documents.
std::string Class(const std::string& name, const std::string& content, const std::string& superclass = "A");
std::string Instance(const std::string& className, const std::string& content);
/// An instance of A with the key "k".
std::string OfA(const std::string& content);

#endif
