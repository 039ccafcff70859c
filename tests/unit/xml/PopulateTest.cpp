#include <zlib.h>

#include <filesystem>

#include "support/SchemaBuilder.h"

namespace {

const std::string kGood =
    "<CIM><DECLARATION><DECLGROUP><QUALIFIER.DECLARATION NAME='Abstract' TYPE='boolean'/><VALUE.OBJECT><CLASS NAME='A'>"
    "<QUALIFIER NAME='Abstract' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER></CLASS></VALUE.OBJECT></DECLGROUP>"
    "</DECLARATION></CIM>";

class Populate : public SchemaTest {
protected:
    kyrStatusCode StatusOfFile(const std::string& path) {
        return StatusOf([&] { fContainer.PopulateContainerFromFile(path); });
    }
    std::string Zipped(const std::string& text) const {
        const std::string path = fFolder.Path() + "/zipped";
        const gzFile file = gzopen(path.c_str(), "wb");
        gzwrite(file, text.data(), static_cast<unsigned int>(text.size()));
        gzclose(file);
        return ReadFile(path);
    }

    TempFolder fFolder;
};

/// A gzip file whose trailer claims another size.
std::string Claiming(std::string zipped, size_t size) {
    for (size_t i = 0; i < 4; ++i) zipped[zipped.size() - 4 + i] = static_cast<char>(size >> (8 * i));
    return zipped;
}

TEST_F(Populate, ReadsPlainAndCompressedDocuments) {
    const std::vector<TCIMClass*> classes = fContainer.PopulateContainerFromFile(fFolder.Write("a.xml", kGood));
    EXPECT_EQ(classes, std::vector<TCIMClass*>({fContainer.GetClass("a")}));
    TContainer other;
    EXPECT_EQ(other.PopulateContainerFromFile(fFolder.Write("a.xml.gz.old", Zipped(kGood))).size(), 1u);
}

TEST_F(Populate, RefusesWhatIsNoDocumentFile) {
    const std::string zipped = Zipped(kGood);
    const std::tuple<const char*, std::string, kyrStatusCode> cases[] = {
        {"empty.xml", "", kyrStatusInvalidSpecificationDocument},
        {"plain.gz", kGood, kyrStatusInvalidGzipFile},
        {"x.gz/plain.xml", kGood, kyrStatusInvalidGzipFile},
        {"none.gz", "", kyrStatusFileSystemError},
        {"one.gz", "\x1f", kyrStatusFileSystemError},
        {"two.gz", "\x1f\x8b", kyrStatusFileSystemError},
        {"three.gz", "ab", kyrStatusInvalidGzipFile},
        {"four.gz", std::string("\x1f\x8b\0\0", 4), kyrStatusCorruptGzipFile},
        {"more.gz", Claiming(zipped, kGood.size() + 1), kyrStatusCorruptGzipFile},
        {"huge.gz", Claiming(zipped, 104857601), kyrStatusInvalidSpecificationDocument},
        {"nothing.gz", Zipped(""), kyrStatusInvalidSpecificationDocument},
    };
    for (const auto& [name, content, status] : cases)
        EXPECT_EQ(StatusOfFile(fFolder.Write(name, content)), status) << name;
    EXPECT_EQ(StatusOfFile(fFolder.Path()), kyrStatusFileNotFound);
    EXPECT_EQ(StatusOfFile(fFolder.Path() + "/no.gz"), kyrStatusFileNotFound);
}

TEST_F(Populate, ReadsUpToTheLimit) {
    const std::string path = fFolder.Write("big.xml", kGood);
    std::filesystem::resize_file(path, 104857600);  // NUL bytes, where the document ends
    EXPECT_EQ(fContainer.PopulateContainerFromFile(path).size(), 1u);
    std::filesystem::resize_file(path, 104857601);
    EXPECT_EQ(StatusOfFile(path), kyrStatusInvalidSpecificationDocument);
    EXPECT_TRUE(fLog.TakeLines().empty());
}

TEST_F(Populate, KeepsWhatAFailedDocumentHasAdded) {
    std::string document = kGood;
    document.insert(document.find("</DECLGROUP>"), "<VALUE.OBJECT>\n<INSTANCE CLASSNAME='B'/></VALUE.OBJECT>");
    const std::string path = fFolder.Write("half.xml", document);
    EXPECT_EQ(StatusOfFile(path), kyrStatusNotFound);
    EXPECT_NE(fContainer.FindClass("A"), nullptr);
    EXPECT_EQ(fLog.TakeLines(), TLines({"0:TCIMXMLParser: Couldn't find class B",
                                        "0:TCIMXMLParser: Threw exception kyrStatusNotFound on line 2",
                                        "0:Previous error was while parsing file '" + path + "'"}));
}

}  // namespace
