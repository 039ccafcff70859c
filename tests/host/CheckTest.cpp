// What kyr check does with what it finds. The rules themselves are tested by the examples of docs/check.md.
#include <set>

#include "KyrRun.h"

using ::testing::HasSubstr;

namespace {

constexpr const char* kDescribed =
    "<QUALIFIER NAME=\"Description\" TYPE=\"string\"><VALUE>What it is.</VALUE></QUALIFIER>\n";
constexpr const char* kKey = "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>\n";

std::string Class(const std::string& name, const std::string& properties, const std::string& superclass = "") {
    return "<VALUE.OBJECT><CLASS NAME=\"" + name + "\" SUPERCLASS=\"" + superclass + "\">\n" + kDescribed +
           "<PROPERTY NAME=\"Name\" TYPE=\"string\">\n" + kKey + kDescribed + "</PROPERTY>\n" + properties +
           "</CLASS></VALUE.OBJECT>\n";
}

std::string Number(const std::string& name) {
    return "<PROPERTY NAME=\"" + name + "\" TYPE=\"uint32\">\n" + kDescribed + "</PROPERTY>\n";
}

std::string Document(const std::string& objects) {
    return "<?xml version=\"1.0\"?>\n<CIM><DECLARATION><DECLGROUP>\n" + objects + "</DECLGROUP></DECLARATION></CIM>\n";
}

const std::string kNoUnit = Document(Class("EX_Pool", Number("Slots")));           // a warning, V07
const std::string kTaken = Document(Class("EX_Pool", "") + Class("EX_Pool", ""));  // an error, S01

class CheckTest : public ::testing::Test {
protected:
    TRunResult Check(const std::string& arguments) const {
        return RunShell("cd " + fFolder.Path() + " && " KYR_PROGRAM " check --plugins . " + arguments);
    }
    // The ids of what is printed, in order.
    std::string Ids(const std::string& arguments) const {
        const std::string out = Check(arguments).out;
        std::string ids;
        for (size_t end = out.find("]\n"); end != std::string::npos; end = out.find("]\n", end + 1))
            if (end >= 4 && out[end - 4] == '[') ids += (ids.empty() ? "" : " ") + out.substr(end - 3, 3);
        return ids;
    }
    void Write(const std::string& name, const std::string& text) const { fFolder.Write(name, text); }

    TempFolder fFolder;
};

}  // namespace

TEST_F(CheckTest, TellsFileLineTextAndRemedy) {
    Write("a.xml", kNoUnit);
    EXPECT_THAT(Check("a.xml"), FieldsAre(0,
                                          "a.xml:9: warning: nobody knows what the number EX_Pool.Slots counts [V07]\n"
                                          "    give it Units; for a number that is a name, the unit Identifier\n"
                                          "1 warning\n",
                                          ""));
}

TEST_F(CheckTest, ExitStatusTellsWhatWasFound) {
    Write("clean.xml", Document(Class("EX_Pool", "")));
    Write("warning.xml", kNoUnit);
    Write("error.xml", kTaken);
    RunShell("gzip -c " + fFolder.Path() + "/error.xml | head -c 100 >" + fFolder.Path() + "/cut.xml.gz");
    constexpr struct {
        const char* arguments;
        int status;
        const char* err;
    } kRuns[] = {
        {"clean.xml --fail-on note", 0, ""},
        {"warning.xml", 0, ""},
        {"warning.xml --fail-on warning", 1, ""},
        {"warning.xml --fail-on note --json", 1, ""},
        {"error.xml clean.xml", 1, ""},
        {"error.xml none.xml", 3, "kyr: none.xml: No such file or directory\n"},
        {"cut.xml.gz", 3, "kyr: cut.xml.gz: cannot be read to its end: it is damaged, or not what its name says\n"},
        {"none.xml --json", 3, "kyr: none.xml: No such file or directory\n"},
        {"/dev/null", 3, "kyr: /dev/null: is neither a file nor a folder\n"},
        {"--rules", 0, ""},
        {"--explain S03", 0, ""},
        {"--explain S033", 2, "did you mean 'S03'"},
        {"error.xml --fail-on erorr", 2, "is none of error, warning, note"},
        {"error.xml --json --sarif", 2, "do not go together"},
        {"", 2, "no PATH given"},
    };
    for (const auto& [arguments, status, err] : kRuns)
        EXPECT_THAT(Check(arguments), FieldsAre(status, _, HasSubstr(err))) << arguments;
    EXPECT_THAT(Check("error.xml none.xml").out, HasSubstr("[S01]"));
    for (const char* const format : {"--json", "--sarif"}) EXPECT_EQ(Check(std::string("none.xml ") + format).out, "");
}

TEST_F(CheckTest, FindingsThatAreNotListedAreCounted) {
    std::string numbers;
    for (int i = 0; i < 600; ++i) numbers += Number("N" + std::to_string(i));
    Write("a.xml", Document(Class("EX_Pool", numbers)));
    EXPECT_THAT(Check("a.xml").out,
                AllOf(HasSubstr("100 more of this rule are not listed [V07]"), HasSubstr("\n600 w")));
    Write("kyr-check.allow", "V07 a.xml: they are names\n");
    EXPECT_EQ(Ids("a.xml"), "");
}

TEST_F(CheckTest, CommentInFrontOfAnElementAllowsWhatIsInIt) {
    const auto ids = [this](const std::string& comment) {
        Write("a.xml", Document(comment + Class("EX_Pool", Number("Slots")) + Class("EX_Other", Number("Slots"))));
        return Ids("a.xml");
    };
    EXPECT_EQ(ids(""), "V07 V07");
    EXPECT_EQ(ids("<!-- kyr-check V07: nobody knows -->"), "V07");
    EXPECT_EQ(ids("<!-- kyr-check V07 nobody knows -->"), "X01 V07 V07");
    EXPECT_EQ(ids("<!-- kyr-check V07:  -->"), "X01 V07 V07");
    EXPECT_EQ(ids("<!-- kyr-check V77: nobody knows -->"), "X01 V07 V07");
    EXPECT_EQ(ids("<!-- kyr-check S19: nobody knows -->"), "X01 V07 V07");
    EXPECT_EQ(ids("<!-- kyr-check v07: nobody knows -->"), "V07");
    EXPECT_EQ(ids("<!-- kyr-check V07, S19: nobody knows -->"), "X01 V07 V07");
    EXPECT_THAT(Check("a.xml").out, HasSubstr("it names more than one rule"));
    EXPECT_EQ(ids("<!-- kyr-check R04: nobody knows -->"), "X01 V07 V07");
    EXPECT_THAT(Check("a.xml").out, HasSubstr("write it into kyr-check.allow"));
}

TEST_F(CheckTest, FileAllowsWhatItNamesInItsFolder) {
    Write("p/a.xml", Document(Class("EX_Pool", Number("Slots") + Number("Ways"))));
    const auto ids = [this](const std::string& lines) {
        Write("p/kyr-check.allow", lines);
        return Ids("p/a.xml");
    };
    EXPECT_EQ(ids("# nothing\n\n"), "V07 V07");
    EXPECT_EQ(ids("V07 ex_pool.slots: nobody knows\n"), "V07");
    for (const char* const what : {"EX_Pool", "a.xml", "*"}) EXPECT_EQ(ids(std::string("V07 ") + what + ": yes\n"), "");
    EXPECT_EQ(ids("V07 EX_Pool\n"), "V07 V07 X01");
    EXPECT_EQ(ids("V07 EX_Basin: nobody knows\n"), "V07 V07 X01");
    EXPECT_EQ(ids("V07 *: yes\nD15 *: no document was misnamed\n"), "X01");
    EXPECT_THAT(Check("p/a.xml").out, HasSubstr("p/kyr-check.allow:2: warning: "));
}

// Of all but the first two the core makes another number without a word.
TEST_F(CheckTest, RealNumberThatTheCoreReadsOtherwiseIsTold) {
    for (const char* const value : {"-1.5", "1e38", "nan", "inf", "0x10", "1e39"}) {
        Write("a.xml", Document(Class("EX_Pool", "<PROPERTY NAME=\"Load\" TYPE=\"real32\">" + std::string(kDescribed) +
                                                     "<VALUE>" + value + "</VALUE></PROPERTY>")));
        const bool isGood = std::string(value) == "-1.5" || std::string(value) == "1e38";
        EXPECT_EQ(Ids("a.xml"), isGood ? "V07" : "V07 S24") << value;
    }
}

TEST_F(CheckTest, FolderIsCheckedWithItsNeighbours) {
    Write("root/a/a.properties.xml", Document(Class("EX_Pool", "")));
    Write("root/b/b.properties.xml",
          Document("<VALUE.OBJECT><CLASS NAME=\"EX_Big\" SUPERCLASS=\"EX_Pool\">"
                   "<QUALIFIER NAME=\"Description\" TYPE=\"string\"><VALUE>A big one.</VALUE>"
                   "</QUALIFIER></CLASS></VALUE.OBJECT>"));
    EXPECT_THAT(Check("root"), FieldsAre(0, "", ""));
    EXPECT_THAT(Check("root/b"), FieldsAre(0, "", ""));
    Write("root/b/b.properties.xml", Document(Class("EX_Pool", "")));
    EXPECT_THAT(Check("root/b").out, HasSubstr("class EX_Pool is already declared in "));
    EXPECT_EQ(Ids("root"), "S01 S01");
    Write("root/c/libc.pi.so", "");
    Write("root/c/x.properties.xml", Document(Class("EX_Other", "")));
    EXPECT_THAT(Check("root/c/x.properties.xml").out, HasSubstr("rename it to c.properties.xml\n"));
    EXPECT_THAT(Check("root/c/libc.pi.so").out, HasSubstr("rename x.properties.xml to c.properties.xml\n"));
}

TEST_F(CheckTest, CompressedDocumentIsChecked) {
    Write("a.xml", kTaken);
    const std::string plain = Check("a.xml --json").out;
    EXPECT_EQ(RunShell("gzip -k " + fFolder.Path() + "/a.xml").status, 0);
    std::string compressed = Check("a.xml.gz --json").out;
    for (size_t gz = compressed.find(".gz"); gz != std::string::npos; gz = compressed.find(".gz"))
        compressed.erase(gz, 3);
    EXPECT_EQ(compressed, plain);
}

// What the standard says of what is written, with no place for anything else.
constexpr const char* kSarif = R"({"type": "object", "required": ["$schema", "version", "runs"],
  "additionalProperties": false, "properties": {"$schema": {"type": "string"}, "version": {"const": "2.1.0"},
  "runs": {"type": "array", "minItems": 1, "items": {"type": "object", "required": ["tool", "results"],
    "additionalProperties": false, "properties": {"columnKind": {"enum": ["utf16CodeUnits", "unicodeCodePoints"]},
    "tool": {"type": "object", "properties": {"driver": {"type": "object", "required": ["name", "version", "rules"],
      "additionalProperties": false, "properties": {"name": {"type": "string"}, "version": {"type": "string"},
      "rules": {"minItems": 40, "uniqueItems": true, "items": {"required": ["id"], "additionalProperties": false,
        "properties": {"id": {"pattern": "^[A-Z][0-9]{2}$"}, "shortDescription": {"$ref": "#/definitions/message"},
        "fullDescription": {"$ref": "#/definitions/message"}, "defaultConfiguration": {"required": ["level"]}}}}}}}},
    "results": {"minItems": 2, "items": {"required": ["ruleId", "level", "message", "locations", "partialFingerprints"],
      "additionalProperties": false, "properties": {"ruleId": {"pattern": "^[A-Z][0-9]{2}$"},
      "level": {"enum": ["error", "warning", "note"]}, "message": {"$ref": "#/definitions/message"},
      "partialFingerprints": {"additionalProperties": {"type": "string"}},
      "suppressions": {"items": {"required": ["kind"], "additionalProperties": false, "properties":
        {"kind": {"enum": ["inSource", "external"]}, "justification": {"type": "string"}}}},
      "locations": {"minItems": 1, "items": {"additionalProperties": false, "properties": {
        "logicalLocations": {"items": {"properties": {"fullyQualifiedName": {"type": "string"}}}},
        "physicalLocation": {"additionalProperties": false, "properties": {
          "artifactLocation": {"properties": {"uri": {"pattern": "^[-a-zA-Z0-9._~/%:]+$"}}},
          "region": {"properties": {"startLine": {"type": "integer", "minimum": 1}}}}}}}}}}}}}}},
  "definitions": {"message": {"required": ["text"], "additionalProperties": false,
    "properties": {"text": {"type": "string", "minLength": 1}}}}})";

TEST_F(CheckTest, PrintsTheInterchangeFormat) {
    if (std::string(JSON_PYTHON).empty()) GTEST_SKIP() << "no python3 with the module jsonschema";
    const auto write = [this](const std::string& front) {
        Write("a b.xml", Document(front + Class("EX_Pool", Number("Slots") + Number("Ways")) +
                                  "<!-- kyr-check V07: nobody knows -->" + Class("EX_Other", Number("Slots"))));
        return Check("--sarif 'a b.xml'").out;
    };
    const auto fingerprints = [](const std::string& sarif) {
        const std::string start = "\"kyrCheck/v1\": \"";
        std::multiset<std::string> all;
        for (size_t at = sarif.find(start); at != std::string::npos; at = sarif.find(start, at + 1)) {
            const size_t text = at + start.size();
            all.insert(sarif.substr(text, sarif.find('"', text) - text));
        }
        return all;
    };
    const std::string sarif = write("");
    EXPECT_THAT(sarif, HasSubstr("\"uri\": \"a%20b.xml\""));
    EXPECT_EQ(CountIn(sarif, "\"inSource\""), 1u);
    const std::string schema = fFolder.Write("schema.json", kSarif), document = fFolder.Write("a.json", sarif);
    EXPECT_THAT(RunShell(JSON_PYTHON " " VALIDATOR " " + schema + " " + document), FieldsAre(0, "", ""));
    EXPECT_EQ(fingerprints(sarif).size(), 3u);
    const std::multiset<std::string> all = fingerprints(sarif);
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), 3u) << "two findings have one fingerprint";
    EXPECT_EQ(fingerprints(write("\n\n\n")), all) << "lines that move change a fingerprint";
}

TEST_F(CheckTest, ReaderHasTheLastWord) {
    Write("a.xml", Document(Class("EX_Pool", "")) + "<?");
    EXPECT_THAT(Check("a.xml"), FieldsAre(1, HasSubstr("[D01]"), ""));
    // ARRAYSIZE of a declaration without an array is nothing that a rule looks for.
    Write("b.xml",
          Document("<QUALIFIER.DECLARATION NAME=\"Place\" TYPE=\"string\" ISARRAY=\"false\" ARRAYSIZE=\"3\"/>\n"));
    EXPECT_THAT(Check("b.xml"), FieldsAre(1, HasSubstr("b.xml:3: error: the reader refuses it: "), ""));
}

TEST_F(CheckTest, HostileDocumentsAreRefused) {
    const auto repeated = [](const std::string& text, size_t times) {
        std::string all;
        for (size_t i = 0; i < times; ++i) all += text;
        return all;
    };
    const std::string start = "<?xml version=\"1.0\"?>\n<CIM><DECLARATION><DECLGROUP>";
    for (const std::string& text :
         {start + repeated("<VALUE.OBJECT>", 200000), start + repeated("<", 300000), start + repeated("&;", 300000),
          start + repeated("<CLASS NAME=\"\n", 100000), start + "<CLASS NAME=\"" + repeated("x", 1000000),
          start + "<VALUE>" + repeated("<VALUE/>", 200000), repeated("<!-- kyr-check X -->", 1000),
          start + repeated("<VALUE.OBJECT><CLASS NAME=\"A\" SUPERCLASS=\"A\"/></VALUE.OBJECT>", 6000)}) {
        Write("a.xml", text);
        const TRunResult run = Check("a.xml");
        EXPECT_THAT(run, FieldsAre(1, HasSubstr(" error"), "")) << text.substr(0, 100);
        EXPECT_FALSE(HasLineOver(2000, run.out)) << text.substr(0, 100);
    }
}
