#include <cmath>
#include <limits>

#include "KyrRun.h"
#include "json/JsonValues.h"
#include "kyr/TCIMDateTime.h"

using CIM = TCIMValue::TCIMType;

namespace {

// Hostile texts, and all types of values.
class JsonTest : public ::testing::Test {
protected:
    JsonTest() : fPlugins({"typed"}) {
        fMachine.Write("sys/class/dmi/id/product_name", "a\x1b[31m\"\t\\\xff\xc3\xa4\xe2\x80\xaez\n");
        fMachine.Write("proc/sys/kernel/hostname", "host\n");
    }

    TRunResult Run(const std::string& arguments, const std::string& source) const {
        return RunKyr(arguments + source, "TZ=UTC KYR_SYSTEM_ROOT=" + fMachine.Path());
    }
    TRunResult Run(const std::string& arguments) const { return Run(arguments, fPlugins.Option()); }

    std::string WriteSchema(const TPluginRoot& plugins) const {
        const TRunResult run = Run("schema --json-schema", plugins.Option());
        return fFiles.Write("schema.json", run.out);
    }

    // Validates with Debian's module.
    static TRunResult Validate(const std::string& files) { return RunShell(JSON_PYTHON " " VALIDATOR " " + files); }

    TempFolder fMachine;
    TempFolder fFiles;
    TPluginRoot fPlugins;
};

constexpr const char* kTies =
    "assoc 'MOLTA_ComputerSystem.CreationClassName=\"MOLTA_ComputerSystem\",Name=\"host\"' --json";

}  // namespace

TEST_F(JsonTest, EveryDocumentObeysTheGeneratedSchema) {
    if (std::string(JSON_PYTHON).empty()) GTEST_SKIP() << "no python3 with the module jsonschema";
    const TPluginRoot plugins({"typed", "shown", "givesup", "noinit"});
    const std::string saved = fFiles.Path() + "/saved.xml";
    EXPECT_EQ(Run("collect -o " + saved, plugins.Option()).status, 1);
    std::string files = WriteSchema(plugins);
    for (const std::string arguments :
         {"collect --json", "collect --json --null --raw --provenance --references", "collect --json --stable",
          "collect --json --class TEST_Typed --class CIM_System --class MOLTA_CollectionState", "show --json", kTies,
          "schema --json", "schema --json CIM_InstalledOS", "identity --json"}) {
        for (const std::string& source : {plugins.Option(), " --from " + saved}) {
            const TRunResult run = Run(arguments, source);
            EXPECT_THAT(run.status, ::testing::AnyOf(0, 1)) << arguments << source << "\n" << run.err;
            files += " " + fFiles.Write(std::to_string(files.size()) + ".json", run.out);
        }
    }
    const TRunResult difference =
        Run("diff --json --all --references " SAVED "/without-reason-codes.xml.gz " + saved, "");
    files += " " + fFiles.Write("difference.json", difference.out);
    files += " " + fFiles.Write("check.json", RunKyr("check --json " SOURCES "/tests/host/plugins/unclosed.xml").out);
    const TRunResult validation = Validate(files);
    EXPECT_EQ(validation.status, 0);
    EXPECT_EQ(validation.out + validation.err, "");
}

TEST_F(JsonTest, DocumentThatWasTamperedWithIsRefused) {
    if (std::string(JSON_PYTHON).empty()) GTEST_SKIP() << "no python3 with the module jsonschema";
    constexpr std::pair<const char*, const char*> kTamperings[] = {
        {"18446744073709551615,", "18446744073709551616,"},
        {"-9223372036854775808,", "\"-9223372036854775808\","},
        {"\"type\": \"sint64\"", "\"type\": \"sint32\""},
        {"\"unit\": \"Hertz\"", "\"unit\": \"Bytes\""},
        {"\"Smallest\"", "\"Smaller\""},
        {"[\"one\"", "[1"},
        {"\"name\": \"TEST_Typed\"", "\"name\": \"MOLTA_ComputerSystem\""},
        {"\"name\": \"TEST_Typed\"", "\"name\": \"TEST_Unknown\""},
        {"\"state\": \"complete\"", "\"state\": \"good\""},
        {"\"reasonCode\": null", "\"reasonCode\": \"because\""},
        {"\"reason\": null,", ""},
        {"\"version\": 3", "\"version\": 2"},
        {"kyrcore/collection", "kyrcore/schema"},
    };
    const std::string document = Run("collect --json").out;
    std::string files = WriteSchema(fPlugins);
    for (const auto& [from, to] : kTamperings) {
        std::string tampered = document;
        const size_t at = tampered.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        tampered.replace(at, std::string(from).size(), to);
        files += " " + fFiles.Write(std::to_string(files.size()) + ".json", tampered);
    }
    EXPECT_EQ(CountIn(Validate(files).out, ".json: "), std::size(kTamperings)) << Validate(files).out;
}

TEST_F(JsonTest, ValuesAreTypedAndExact) {
    const std::string document = Run("collect --json --class TEST_Typed").out;
    for (const char* part : {
             "\"type\": \"uint64\",\n              \"value\": 18446744073709551615,\n              \"unit\": \"Hertz\"",
             "\"value\": -9223372036854775808,",
             "\"value\": 0.1,",
             "\"value\": 1e+300,",
             "\"value\": true,",
             "\"value\": [\"one\", \"two, \\\"three\\\"\"],",
             "\"type\": \"string[]\",\n              \"value\": null,\n              \"unit\": null,\n"
             "              \"text\": null",
         })
        EXPECT_THAT(document, HasSubstr(part));
}

TEST_F(JsonTest, HostileTextIsEscapedAndWhatIsNoUtf8IsVisible) {
    EXPECT_THAT(Run("collect --json --class MOLTA_ComputerSystem").out,
                HasSubstr("\"value\": \"a\\u001B[31m\\\"\\t\\\\\\\\xFF\xc3\xa4\\u202Ez\","));
}

TEST_F(JsonTest, StableDocumentIsTheSameTwice) {
    const std::string arguments = "collect --json --stable --class TEST_Typed";
    const std::string document = Run(arguments).out;
    EXPECT_EQ(document, Run(arguments).out);
    EXPECT_THAT(document, HasSubstr("\"time\": null,"));
    EXPECT_THAT(document,
                HasSubstr("\"Ticks\": {\n              \"type\": \"uint32\",\n              \"value\": null,"));
}

TEST_F(JsonTest, ValuesThatNoDocumentCanHoldAreWritten) {
    const std::pair<TCIMValue, const char*> kValues[] = {
        {TCIMValue(std::numeric_limits<double>::quiet_NaN()), "\"NaN\""},
        {TCIMValue(-std::numeric_limits<float>::infinity()), "\"-Infinity\""},
        {TCIMValue(std::numeric_limits<double>::denorm_min()), "5e-324"},
        {TCIMValue(TCIMDateTime()), "null"},
        {TCIMValue(CIM::eCIMUint8, 1, {TCIMValue(static_cast<unsigned char>(9)), TCIMValue(CIM::eCIMUint8, 0)}),
         "[9, null]"},
    };
    for (const auto& [value, text] : kValues) {
        ::testing::internal::CaptureStdout();
        TOutput output;
        TJsonWriter json(output);
        json.StartArray();
        WriteValue(json, value);
        json.EndArray();
        output.Flush();
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), std::string("[") + text + "]\n");
    }
}
