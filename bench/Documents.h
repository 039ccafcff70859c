#ifndef KYR_BENCH_DOCUMENTS_H
#define KYR_BENCH_DOCUMENTS_H

#include <cstddef>
#include <string>
#include <vector>

/// CIM-XML with classes, many qualifiers and long descriptions, of about that many bytes. The same text each time.
std::string SchemaDocument(std::size_t bytes);

/// CIM-XML with one class of 20 properties of all types, and instances that set about half of them: some 790 bytes
/// for each. The same text each time.
std::string DataDocument(unsigned instances);

/// A writable copy of a text, with the NUL bytes in front and behind that the reader needs.
class TEditableText {
public:
    explicit TEditableText(const std::string& text);
    char* Text() { return fBytes.data() + 1; }

private:
    std::vector<char> fBytes;
};

#endif
