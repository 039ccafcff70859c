#ifndef KYR_FUZZ_SUPPORT_DOCUMENTS_H
#define KYR_FUZZ_SUPPORT_DOCUMENTS_H

#include <cstddef>
#include <string_view>
#include <vector>

/// False if the parser might not return from the document or might need a deep stack.
bool IsReadable(std::string_view document);

/// A writable document with a NUL before and after it, as TXmlParser::Parse requires, in a buffer of exactly this size.
class TDocumentText {
public:
    explicit TDocumentText(std::string_view document);

    char* Begin() { return fBuffer.data() + 1; }
    std::string_view Text() const { return {fBuffer.data() + 1, fBuffer.size() - 2}; }

private:
    std::vector<char> fBuffer;
};

#endif
