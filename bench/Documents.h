#ifndef KYR_BENCH_DOCUMENTS_H
#define KYR_BENCH_DOCUMENTS_H

#include <cstddef>
#include <string>
#include <vector>

/// In a full document classes inherit from one another, and instances set all their properties.
enum class EDocument { ePlain, eFull };

/// A CIM-XML schema with many qualifiers and long descriptions, of about this size. The same text each time.
std::string SchemaDocument(std::size_t bytes, EDocument kind = EDocument::ePlain);

/// CIM-XML with instances of a class with properties of all types: of 20 about half are set, 790 bytes an instance; in
/// a full document all 22, 1,950 bytes. The same text each time.
std::string DataDocument(unsigned instances, EDocument kind = EDocument::ePlain);

/// A writable copy of a text with a NUL before and after it, as TXmlParser::Parse requires.
class TEditableText {
public:
    explicit TEditableText(const std::string& text);
    char* Text() { return fBytes.data() + 1; }

private:
    std::vector<char> fBytes;
};

#endif
