#include <filesystem>

#include "KyrRun.h"

namespace fs = std::filesystem;

namespace {

// Building what it makes is a test of its own, NewPlugin in tests/docs.
TRunResult Make(const TempFolder& folder, const std::string& arguments) {
    return RunShell("cd " + folder.Path() + " && " KYR_PROGRAM " new-plugin " + arguments);
}

TEST(NewPluginTest, FilesHaveTheNameInPlaceOfEveryPlaceholder) {
    const TempFolder folder;
    for (const std::string language : {"c", "c++"}) {
        const std::string name = language == "c" ? "disk_health" : "diskHealth2",
                          folderOfIt = folder.Path() + "/" + name;
        const TRunResult run = Make(folder, name + " --language " + language);
        EXPECT_THAT(run, FieldsAre(0, HasSubstr("kyr show EX_DiskHealth"), "")) << language;
        EXPECT_TRUE(fs::exists(folderOfIt + "/" + name + (language == "c" ? ".c" : ".cpp")));
        EXPECT_TRUE(fs::exists(folderOfIt + "/" + name + ".properties.xml"));
        for (const fs::directory_entry& file : fs::directory_iterator(folderOfIt))
            EXPECT_THAT(ReadFile(file.path().string()), Not(ContainsRegex("@[A-Z_]+@"))) << file;
    }
}

TEST(NewPluginTest, NamesThatWouldNotWorkAreRefused) {
    const TempFolder folder;
    const std::string rule = "' is no name for a plugin: a letter, and up to 63 letters, digits and '_'";
    const struct {
        std::string arguments, message;
    } cases[] = {
        {"disk-health", "'disk-health" + rule + "; 'disk_health' would do"},
        {"2disks", "'2disks" + rule},
        {"''", "'" + rule},
        {"../up", "'../up" + rule},
        {std::string(65, 'a'), "'" + std::string(65, 'a') + rule},
        {"calibration", "'calibration' holds the letters lib"},
        {"system", "there is a plugin 'system' already, in '"},
        {"disks --language rust", "'rust' is none of c, c++"},
        {"disks more", "unexpected argument 'more'"},
        {"", "NAME is required"},
    };
    for (const auto& each : cases)
        EXPECT_THAT(Make(folder, each.arguments), FieldsAre(2, "", HasSubstr(each.message))) << each.arguments;
    EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(NewPluginTest, WhatIsThereIsLeftAlone) {
    const TempFolder folder;
    for (const char* path : {"disks/disks.c", "disks"}) {
        const std::string kept = folder.Write(path, "kept");
        EXPECT_THAT(Make(folder, "disks"),
                    FieldsAre(2, "", "kyr: 'disks' is there already; choose another name or move it away\n"));
        EXPECT_EQ(ReadFile(kept), "kept");
        fs::remove_all(folder.Path() + "/disks");
    }
    EXPECT_THAT(RunShell("cd /proc && " KYR_PROGRAM " new-plugin disks"),
                FieldsAre(4, "", StartsWith("kyr: cannot make the folder 'disks': ")));
}

}  // namespace
