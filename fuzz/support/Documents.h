#ifndef KYR_FUZZ_SUPPORT_DOCUMENTS_H
#define KYR_FUZZ_SUPPORT_DOCUMENTS_H

#include <cstddef>
#include <string_view>
#include <vector>

/// Whether the reader comes back from the document, and within a modest stack. Errs on the side of caution.
bool IsReadable(std::string_view document);

/// A writable document with a NUL in front and another behind, as the tokeniser wants it, and not a byte more.
class TDocumentText {
public:
    explicit TDocumentText(std::string_view document);

    char* Begin() { return fBuffer.data() + 1; }
    std::string_view Text() const { return {fBuffer.data() + 1, fBuffer.size() - 2}; }

private:
    std::vector<char> fBuffer;
};

#endif
