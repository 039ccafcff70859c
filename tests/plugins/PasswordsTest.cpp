// The passwords of the machines in tests/fixtures/machines, encrypted or not, hold the word SECRET. It may show
// nowhere.
#include "host/KyrRun.h"

TEST(PasswordsTest, NoPasswordIsToldAnywhere) {
    for (const char* machine : {"server", "laptop", "hostile"}) {
        const TempFolder folder;
        const std::string file = folder.Path() + "/saved.xml", log = folder.Path() + "/log";
        const std::string options = " " ALL_PLUGINS " --class MOLTA_Account --class MOLTA_Group --verbose --log " + log;
        const TRunResult json = RunKyrOn(machine, "collect --json" + options);
        EXPECT_THAT(json.out, HasSubstr("PasswordState"));
        EXPECT_THAT(json.out + json.err + ReadFile(log), Not(HasSubstr("SECRET")));
        const TRunResult saved = RunKyrOn(machine, "collect --in-process" + options + " -o " + file);
        EXPECT_THAT(ReadFile(file), HasSubstr("PasswordState"));
        EXPECT_THAT(ReadFile(file) + saved.out + saved.err + ReadFile(log), Not(HasSubstr("SECRET")));
    }
}
