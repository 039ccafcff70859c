#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>

#include "kyr/TKYRException.h"
#include "kyr/TOSSpecific.h"
#include "platform/CoreLog.h"

namespace {

// The constants of libcurl that are used here. Its headers are not needed to build, and the library is loaded on
// demand.
constexpr long kGlobalInitAll = 3;
constexpr int kOptionErrorBuffer = 10010;
constexpr int kOptionUpload = 46;
constexpr int kOptionUrl = 10002;
constexpr int kOptionInputFile = 10009;
constexpr int kCannotResolveHost = 6;
constexpr int kCannotConnect = 7;
constexpr size_t kErrorBufferSize = 256;

struct TCurl {
    int (*globalInit)(long flags);
    void* (*easyInit)();
    int (*setOption)(void* handle, int option, ...);
    int (*perform)(void* handle);
    void (*easyCleanup)(void* handle);
    void (*globalCleanup)();
};

void* OpenLibrary() {
    void* library = dlopen("libcurl.so", RTLD_LAZY);
    if (!library)
        LogAndThrow(kyrStatusLibCurlFailure,
                    std::string("TOSSpecific|FTPFile: Error opening curl library: ") + dlerror());
    return library;
}

template <typename TFunction>
void Resolve(void* library, const char* name, TFunction& function) {
    function = reinterpret_cast<TFunction>(dlsym(library, name));
    if (!dlerror()) return;
    // Compatibility: the first dlerror call has cleared the message, so that this one usually returns null and
    // std::logic_error is raised instead of a status; see docs/oddities.md.
    const std::string reason(dlerror());
    LogAndThrow(kyrStatusLibCurlFailure, "TOSSpecific|FTPFile: Error loading curl library: " + reason);
}

TCurl ResolveAll(void* library) {
    TCurl curl;
    Resolve(library, "curl_global_init", curl.globalInit);
    Resolve(library, "curl_easy_init", curl.easyInit);
    Resolve(library, "curl_easy_setopt", curl.setOption);
    Resolve(library, "curl_easy_perform", curl.perform);
    Resolve(library, "curl_easy_cleanup", curl.easyCleanup);
    Resolve(library, "curl_global_cleanup", curl.globalCleanup);
    return curl;
}

FILE* OpenStream(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY);
    struct stat info;
    if (fstat(descriptor, &info) != 0)
        LogAndThrow(kyrStatusFileSystemError, "TOSSpecific|FTPFile: Error getting file size");
    FILE* stream = fdopen(descriptor, "rb");
    if (!stream) LogAndThrow(kyrStatusFileSystemError, "TOSSpecific|FTPFile: Error creating file stream");
    return stream;
}

void Require(int result, const char* complaint) {
    if (result != 0) LogAndThrow(kyrStatusLibCurlFailure, complaint);
}

void Configure(const TCurl& curl, void* handle, char* errorText, const std::string& target, FILE* stream) {
    Require(curl.setOption(handle, kOptionErrorBuffer, errorText),
            "TOSSpecific|FTPFile: Error configuring curl error buffer");
    Require(curl.setOption(handle, kOptionUpload, 1L), "TOSSpecific|FTPFile: Error setting curl upload");
    Require(curl.setOption(handle, kOptionUrl, target.c_str()), "TOSSpecific|FTPFile: Error setting curl target");
    Require(curl.setOption(handle, kOptionInputFile, stream), "TOSSpecific|FTPFile: Error setting curl upload file");
}

void Perform(const TCurl& curl, void* handle, const char* errorText) {
    const int result = curl.perform(handle);
    if (result == kCannotResolveHost || result == kCannotConnect)
        LogAndThrow(kyrStatusConnectionFailed, "TOSSpecific|FTPFile: Error connecting to Halvex Service");
    if (result != 0)
        LogAndThrow(kyrStatusLibCurlFailure,
                    std::string("TOSSpecific|FTPFile: Error performing upload command: ") + errorText);
}

}  // namespace

bool TOSSpecific::FTPFile(std::string localPath, std::string name) {
    const std::string target =
        std::string("ftp://") + KYRCORE_UPLOAD_HOST + "/zenhost/tohalvex/grumline/kyr_upload/" + name + ".xml.gz";
    // Library, stream and handle are not closed if something below raises.
    void* library = OpenLibrary();
    const TCurl curl = ResolveAll(library);
    FILE* stream = OpenStream(localPath);
    curl.globalInit(kGlobalInitAll);
    void* handle = curl.easyInit();
    if (!handle) LogAndThrow(kyrStatusLibCurlFailure, "TOSSpecific|FTPFile: Error initalizing curl");
    char errorText[kErrorBufferSize] = {};
    Configure(curl, handle, errorText, target, stream);
    Perform(curl, handle, errorText);
    curl.easyCleanup(handle);
    curl.globalCleanup();
    fclose(stream);
    dlclose(library);
    return true;
}
