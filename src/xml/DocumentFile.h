#ifndef KYR_XML_DOCUMENTFILE_H
#define KYR_XML_DOCUMENTFILE_H

#include <boost/scoped_array.hpp>
#include <cstddef>
#include <string>

/// The content of a document in one buffer, decompressed if its path contains ".gz". There is a NUL before the text and
/// one after it, as TXmlParser::Parse requires.
class TDocumentFile {
public:
    static constexpr unsigned int kMaxSize = 104857600;

    /// kyrStatusFileNotFound (a directory too), kyrStatusFileSystemError, kyrStatusOutOfMemory,
    /// kyrStatusInvalidSpecificationDocument (larger than kMaxSize), kyrStatusInvalidGzipFile,
    /// kyrStatusCorruptGzipFile.
    explicit TDocumentFile(const std::string& path);

    char* GetText() const { return fBuffer.get() + 1; }

private:
    void ReadPlain(const std::string& path, unsigned long long size);
    void ReadCompressed(const std::string& path);
    void Allocate(unsigned long long size);
    void Terminate(std::size_t length) { GetText()[length] = '\0'; }

    boost::scoped_array<char> fBuffer;
};

#endif
