#ifndef KYR_BENCH_DOCUMENTS_H
#define KYR_BENCH_DOCUMENTS_H

#include <cstddef>
#include <string>
#include <vector>

/// A CIM-XML schema with many qualifiers and long descriptions, of about this size. The same text each time.
std::string SchemaDocument(std::size_t bytes);

/// CIM-XML with one class of 20 properties of all types, and instances that set about half of them, about 790 bytes
/// each. The same text each time.
std::string DataDocument(unsigned instances);

/// A writable copy of a text with a NUL before and after it, as TXmlParser::Parse requires.
class TEditableText {
public:
    explicit TEditableText(const std::string& text);
    char* Text() { return fBytes.data() + 1; }

private:
    std::vector<char> fBytes;
};

#endif
