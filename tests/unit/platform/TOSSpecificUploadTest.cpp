#include <dlfcn.h>

#include <filesystem>
#include <numeric>

#include "kyr/TOSSpecific.h"
#include "support/TestSupport.h"

namespace {

constexpr const char* kTargetFolder = "zenhost/tohalvex/grumline/kyr_upload";
constexpr const char* kPython = "/usr/bin/python3";

class TOSSpecificUploadTest : public LoggedTest {
protected:
    /// What the probe prints, with libcurl.so looked for in the folder first. The host "served" is a real server, made
    /// for this one upload, that has the given permissions on a folder.
    std::string Upload(const std::string& curlFolder, const std::string& host, const std::string& file,
                       const std::string& fakeResult = "", const std::string& permissions = "") {
        std::vector<std::string> command = {
            "LD_LIBRARY_PATH=" + curlFolder, "FAKE_CURL_RESULT=" + fakeResult, KYRCORE_UPLOAD_PROBE, host, file, "abc"};
        const std::vector<std::string> server = {kPython, KYRCORE_FTP_SERVER, fServed.Path(), permissions, "env"};
        if (host == "served") command.insert(command.begin(), server.begin(), server.end());
        return TOSSpecific::SpawnProcess("env", command);
    }
    /// A folder with the system's libcurl under the name that developers' machines have it by; empty if there is none.
    std::string RealCurl() {
        void* library = dlopen("libcurl.so.4", RTLD_LAZY);
        Dl_info info;
        if (!library || dladdr(dlsym(library, "curl_easy_init"), &info) == 0) return "";
        std::error_code ignored;
        std::filesystem::create_symlink(info.dli_fname, fFolder.Path() + "/libcurl.so", ignored);
        return fFolder.Path();
    }
    bool HasServer() {
        std::string output;
        return TOSSpecific::SpawnProcess(kPython, {"-c", "import pyftpdlib.servers"}, output) == 0;
    }

    TempFolder fFolder;
    TempFolder fServed;
    std::string fFile = fFolder.Write("local.file", "content");
};

TEST_F(TOSSpecificUploadTest, TheBytesArriveAtTheFixedPath) {
    if (RealCurl().empty() || !HasServer()) GTEST_SKIP() << "needs libcurl.so.4 and pyftpdlib (python3-pyftpdlib)";
    std::filesystem::create_directories(fServed.Path() + "/" + kTargetFolder);
    std::string content;
    for (unsigned int i = 0; i < 1000000; ++i) content += static_cast<char>(i * i >> 8);
    const std::string big = fFolder.Write("big", content);
    EXPECT_THAT(Upload(RealCurl(), "served", big, "", "elr"),
                StartsWith("kyrStatusLibCurlFailure\n0:TOSSpecific|FTPFile: Error performing upload command: "));
    EXPECT_EQ(Upload(RealCurl(), "served", big, "", "elradfmw"), "true\n");
    EXPECT_TRUE(ReadFile(fServed.Path() + "/" + kTargetFolder + "/abc.xml.gz") == content);
}

TEST_F(TOSSpecificUploadTest, AServerThatIsNotThereIsAFailureOfTheConnection) {
    if (RealCurl().empty()) GTEST_SKIP() << "needs libcurl.so.4";
    EXPECT_EQ(Upload(RealCurl(), "127.0.0.1:1", fFile),
              "kyrStatusConnectionFailed\n0:TOSSpecific|FTPFile: Error connecting to Halvex Service\n");
}

TEST_F(TOSSpecificUploadTest, AnUnusableLibraryIsNoticedBeforeTheFileIsTouched) {
    fFolder.Write("empty/libcurl.so", "");
    EXPECT_THAT(Upload(fFolder.Path() + "/empty", "host", "/missing"),
                StartsWith("kyrStatusLibCurlFailure\n0:TOSSpecific|FTPFile: Error opening curl library: "));
    EXPECT_EQ(Upload(KYRCORE_INCOMPLETE_CURL, "host", "/missing"), "std::logic_error\n");
    EXPECT_EQ(Upload(KYRCORE_FAKE_CURL, "host", "/missing"),
              "kyrStatusFileSystemError\n0:TOSSpecific|FTPFile: Error getting file size\n");
}

TEST_F(TOSSpecificUploadTest, TheLibraryIsCalledInOrderAndEachRefusalHasItsWords) {
    // clang-format off
    const std::string calls[] = {
        "curl_global_init 3\n", "curl_easy_init\n", "curl_easy_setopt 10010 \"\"\n", "curl_easy_setopt 46 1\n",
        "curl_easy_setopt 10002 ftp://host/" + std::string(kTargetFolder) + "/abc.xml.gz\n",
        "curl_easy_setopt 10009 c\n", "curl_easy_perform\n", "curl_easy_cleanup 1\n", "curl_global_cleanup\n"};
    // clang-format on
    const std::string curlFailure = "kyrStatusLibCurlFailure\n0:TOSSpecific|FTPFile: ";
    const std::string noConnection =
        "kyrStatusConnectionFailed\n0:TOSSpecific|FTPFile: Error connecting to Halvex Service";
    // The call that fails, how many are made, and what comes of it.
    const std::tuple<const char*, size_t, std::string> cases[] = {
        {"", 9, "true"},
        {"init=1", 2, curlFailure + "Error initalizing curl"},
        {"10010=1", 3, curlFailure + "Error configuring curl error buffer"},
        {"46=1", 4, curlFailure + "Error setting curl upload"},
        {"10002=1", 5, curlFailure + "Error setting curl target"},
        {"10009=1", 6, curlFailure + "Error setting curl upload file"},
        {"perform=6", 7, noConnection},
        {"perform=7", 7, noConnection},
        {"perform=28", 7, curlFailure + "Error performing upload command: the reason"}};
    for (const auto& [result, count, outcome] : cases) {
        const std::string expected = std::accumulate(calls, calls + count, std::string());
        EXPECT_EQ(Upload(KYRCORE_FAKE_CURL, "host", fFile, result), expected + outcome + "\n") << result;
    }
}

}  // namespace
