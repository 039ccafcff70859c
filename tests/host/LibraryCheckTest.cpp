#include <sys/stat.h>

#include <filesystem>

#include "KyrRun.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kGood = FIXTURE_PLUGINS "/mistaken/libmistaken.pi.so";

// Puts a file at a path below the folder.
void Place(const TempFolder& root, const std::string& file, const std::string& path) {
    const fs::path target = fs::path(root.Path()) / path;
    fs::create_directories(target.parent_path());
    fs::copy_file(file, target);
}

std::string Check(const TempFolder& root) {
    return RunKyr("check " + root.Path()).err + RunKyr("check " + root.Path()).out;
}

}  // namespace

TEST(LibraryCheckTest, CopyOfALibraryIsTold) {
    const TempFolder root;
    Place(root, kGood, "users/libmistaken.pi.so.old");
    EXPECT_THAT(Check(root), AllOf(HasSubstr("[L05]"), HasSubstr("move copies out of the plugin folder")));
}

TEST(LibraryCheckTest, BuildFolderOfAPluginIsNotMisplaced) {
    const TempFolder root;
    Place(root, FIXTURE_PLUGINS "/mistaken/mistaken.properties.xml", "mistaken.properties.xml");
    Place(root, kGood, "build/plugins/mistaken/libmistaken.pi.so");
    EXPECT_THAT(Check(root), HasSubstr("[L09]"));
    Place(root, FIXTURE_PLUGINS "/mistaken/mistaken.properties.xml", "build/plugins/mistaken/mistaken.properties.xml");
    EXPECT_THAT(Check(root), Not(HasSubstr("[L09]")));
    Place(root, kGood, "other/libmistaken.pi.so");  // so that the folder is a plugin folder
    EXPECT_THAT(Check(root), HasSubstr("[L09]"));
    fs::remove_all(root.Path() + "/other");
    fs::remove(root.Path() + "/build/plugins/mistaken/mistaken.properties.xml");
    root.Write("build/CMakeCache.txt", "");
    EXPECT_THAT(Check(root), Not(HasSubstr("[L09]")));
}

TEST(LibraryCheckTest, WhatIsNoFileIsTold) {
    const TempFolder root;
    fs::create_directories(root.Path() + "/users");
    fs::create_symlink("nothing", root.Path() + "/users/libusers.pi.so");
    ASSERT_EQ(mkfifo((root.Path() + "/users/users.properties.xml").c_str(), 0600), 0);
    EXPECT_THAT(Check(root), AllOf(HasSubstr("users/libusers.pi.so: error: it leads to a file that is not there [L12]"),
                                   HasSubstr("users/users.properties.xml: error: it is no file [D17]")));
}

TEST(LibraryCheckTest, SymbolsAndProtectionAreToldAndNoCodeRuns) {
    const TRunResult run = RunKyr("check " FIXTURE_PLUGINS "/faulty/libfaulty.pi.so");
    EXPECT_EQ(run.status, 1);
    for (const char* text : {"symbols of its own: ", "kept [L01]", "refers to: missing [L02]",
                             "calls kyrRegisterPlugin", "executable stack [L06]", "in '/opt/faulty' (RUNPATH) [L06]"})
        EXPECT_THAT(run.out, HasSubstr(text));
    EXPECT_THAT(RunKyr("check " FIXTURE_PLUGINS "/loadcrash").out, Not(ContainsRegex("L0[1-5]|L07|L12")));
}

TEST(LibraryCheckTest, WritableLibraryIsAnError) {
    const TempFolder root;
    Place(root, kGood, "users/libmistaken.pi.so");
    EXPECT_THAT(Check(root), Not(HasSubstr("[L07]")));
    ASSERT_EQ(chmod((root.Path() + "/users/libmistaken.pi.so").c_str(), 0666), 0);
    EXPECT_THAT(Check(root), HasSubstr("[L07]"));
}

// Also with bytes changed of what the linker reads first.
TEST(LibraryCheckTest, DamagedLibrariesAreToldAndHarmNothing) {
    const TempFolder root;
    const std::string whole = ReadFile(kGood);
    EXPECT_THAT(RunKyr("check " + root.Write("libnone.pi.so", "")).out, HasSubstr("it is no shared library [L12]"));
    EXPECT_THAT(RunKyr("check " + root.Write("libcut.pi.so", whole.substr(0, 3000))).out, HasSubstr("[L12]"));
    for (size_t at = 4; at < 1024; at += 131) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xFF);
        const TRunResult run = RunKyr("check " + root.Write("libdamaged.pi.so", damaged));
        EXPECT_TRUE(run.status == 0 || run.status == 1) << at << run.err;
    }
}
