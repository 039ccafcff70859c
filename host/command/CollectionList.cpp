#include "command/CollectionList.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/ExitStatus.h"
#include "base/Gzip.h"
#include "base/Text.h"

namespace {

constexpr const char* kStandardInput = "/dev/stdin";
constexpr size_t kChunk = 1 << 16;

std::string Quoted(const std::string& path) { return "'" + VisibleText(path) + "'"; }

[[noreturn]] void RefuseFolder(const std::string& path) {
    throw TCommandError(eExitUsage, Quoted(path) + " is a folder: name its files, as by find " + VisibleText(path) +
                                        " -name '*.xml.gz' -print0 | kyr export ... -");
}

// A collection is compressed, or XML, perhaps behind a byte order mark. No name of a file looks so.
bool IsCollection(const std::string& start) {
    const size_t first = start.find_first_not_of(" \t\r\n");
    return IsGzip(start) || StartsWith(start, "\xEF\xBB\xBF<") || (first != std::string::npos && start[first] == '<');
}

std::ifstream Open(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw TCommandError(eExitUsage, "cannot read " + Quoted(path) + ": " + std::strerror(errno));
    return file;
}

std::string ReadSome(std::istream& file) {
    std::string chunk(kChunk, '\0');
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    chunk.resize(static_cast<size_t>(file.gcount()));
    return chunk;
}

std::string ReadRest(std::istream& file) { return {std::istreambuf_iterator<char>(file), {}}; }

void Copy(std::string chunk, std::istream& from, TSpool& to) {
    for (; !chunk.empty(); chunk = ReadSome(from)) to.Write(chunk);
    to.Rewind();
}

}  // namespace

TCollectionList::TCollectionList(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "-")
            AddStandardInput();
        else if (StartsWith(argument, "@"))
            AddList(argument.substr(1));
        else
            AddFile(argument);
    }
}

void TCollectionList::AddStandardInput() {
    std::ifstream input = Open(kStandardInput);
    std::string start = ReadSome(input);
    if (!IsCollection(start)) return AddNames(start + ReadRest(input), "standard input");
    Copy(std::move(start), input, fCopies.emplace_back());
    fSources.push_back({fCopies.back().Path(), "standard input"});
}

void TCollectionList::AddList(const std::string& path) {
    std::ifstream list = Open(path);
    AddNames(ReadRest(list), Quoted(path));
}

void TCollectionList::AddNames(const std::string& names, const std::string& list) {
    const size_t before = fSources.size();
    std::istringstream lines(names);
    const char end = names.find('\0') == std::string::npos ? '\n' : '\0';
    for (std::string name; std::getline(lines, name, end);)
        if (!name.empty()) AddNamed(name);
    if (fSources.size() == before) throw TCommandError(eExitUsage, list + " names no collection");
}

void TCollectionList::AddFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) RefuseFolder(path);
    AddNamed(path);
}

// What is not there, or is a folder, is told when it is its turn, so that the others are read.
void TCollectionList::AddNamed(const std::string& path) {
    struct stat status {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    if (!isThere || S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) return fSources.push_back({path, path});
    std::ifstream pipe = Open(path);
    Copy(ReadSome(pipe), pipe, fCopies.emplace_back());
    fSources.push_back({fCopies.back().Path(), path});
}
