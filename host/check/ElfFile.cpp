#include "check/ElfFile.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>

#include "base/ExitStatus.h"

namespace {

using THeader = ElfW(Ehdr);
using TSegment = ElfW(Phdr);
using TSection = ElfW(Shdr);
using TEntry = ElfW(Dyn);
using TSymbolEntry = ElfW(Sym);

constexpr size_t kMostBytes = size_t{256} << 20;
constexpr size_t kMostSymbols = 1'000'000;
constexpr size_t kLongestName = 4096;
constexpr size_t kMostSegments = 1000;
constexpr size_t kMostEntries = 1000;  // of the dynamic section
constexpr const char* kDamaged = "it is damaged";
constexpr unsigned char kClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr unsigned char kOrder = __BYTE_ORDER == __LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB;

unsigned char BindingOf(const TSymbolEntry& symbol) { return ELF64_ST_BIND(symbol.st_info); }
unsigned char VisibilityOf(const TSymbolEntry& symbol) { return ELF64_ST_VISIBILITY(symbol.st_other); }

/// Reads from the bytes of the file, of which none can be trusted.
class TElfReader {
public:
    explicit TElfReader(std::string_view bytes) : fBytes(bytes) {}

    TElfFile Read() {
        TElfFile file;
        file.fault = FindFault();
        if (!file.fault.empty()) return file;
        ReadSegments(file);
        if (IsCut()) file.fault = "it is cut off";
        ReadDynamicSection(file);
        ReadSymbols(file);
        return file;
    }

private:
    template <typename T>
    bool Get(size_t offset, T& value) const {
        if (offset > fBytes.size() || fBytes.size() - offset < sizeof value) return false;
        std::memcpy(&value, fBytes.data() + offset, sizeof value);
        return true;
    }

    // The text at the offset of the strings; empty if it does not end there.
    std::string Text(size_t offset) const {
        if (offset >= fTextSize || fTexts > fBytes.size() || offset > fBytes.size() - fTexts) return "";
        const std::string_view text = fBytes.substr(fTexts + offset, std::min(fTextSize - offset, kLongestName));
        const size_t end = text.find('\0');
        return end == std::string_view::npos ? "" : std::string(text.substr(0, end));
    }

    std::string FindFault() {
        if (!Get(0, fHeader) || std::memcmp(fHeader.e_ident, ELFMAG, SELFMAG) != 0) return "it is no shared library";
        if (fHeader.e_ident[EI_CLASS] != kClass || fHeader.e_ident[EI_DATA] != kOrder ||
            fHeader.e_machine != OwnMachine())
            return "it is built for another kind of machine";
        if (fHeader.e_type != ET_DYN) return "it is no shared library, but another file of the linker";
        const bool isWhole = fHeader.e_phentsize == sizeof(TSegment) && fHeader.e_phnum <= kMostSegments;
        return isWhole ? "" : kDamaged;
    }

    bool IsCut() const {
        return std::any_of(fSegments.begin(), fSegments.end(), [this](const TSegment& segment) {
            return segment.p_offset > fBytes.size() || segment.p_filesz > fBytes.size() - segment.p_offset;
        });
    }

    // That of the program itself.
    static ElfW(Half) OwnMachine() {
        static const ElfW(Half) machine = [] {
            THeader own{};
            std::ifstream("/proc/self/exe", std::ios::binary).read(reinterpret_cast<char*>(&own), sizeof own);
            return own.e_machine;
        }();
        return machine;
    }

    void ReadSegments(TElfFile& file) {
        file.hasExecutableStack = true;  // of a library that does not say
        for (size_t i = 0; i < fHeader.e_phnum; ++i) {
            TSegment segment{};
            if (!Get(fHeader.e_phoff + i * sizeof segment, segment)) return;
            if (segment.p_type == PT_LOAD) fSegments.push_back(segment);
            if (segment.p_type == PT_DYNAMIC) fDynamic = segment;
            if (segment.p_type == PT_GNU_STACK) file.hasExecutableStack = (segment.p_flags & PF_X) != 0;
        }
    }

    // Where in the file an address is; the end of the file if nowhere.
    size_t OffsetOf(ElfW(Addr) address) const {
        for (const TSegment& segment : fSegments)
            if (address >= segment.p_vaddr && address - segment.p_vaddr < segment.p_filesz)
                return segment.p_offset + (address - segment.p_vaddr);
        return fBytes.size();
    }

    std::vector<TEntry> DynamicEntries() const {
        std::vector<TEntry> entries;
        TEntry entry{};
        for (size_t at = 0; at < fDynamic.p_filesz && Get(fDynamic.p_offset + at, entry); at += sizeof entry) {
            if (entry.d_tag == DT_NULL) break;
            entries.push_back(entry);
            if (entries.size() == kMostEntries) break;
        }
        return entries;
    }

    void ReadDynamicSection(TElfFile& file) {
        const std::vector<TEntry> entries = DynamicEntries();
        for (const TEntry& entry : entries) {
            if (entry.d_tag == DT_STRTAB) fTexts = OffsetOf(entry.d_un.d_ptr);
            if (entry.d_tag == DT_STRSZ) fTextSize = entry.d_un.d_val;
            if (entry.d_tag == DT_SYMTAB) fSymbols = OffsetOf(entry.d_un.d_ptr);
            if (entry.d_tag == DT_TEXTREL) file.hasTextRelocations = true;
            if (entry.d_tag == DT_FLAGS && (entry.d_un.d_val & DF_TEXTREL) != 0) file.hasTextRelocations = true;
        }
        for (const TEntry& entry : entries) {
            if (entry.d_tag == DT_NEEDED) file.needed.push_back(Text(entry.d_un.d_val));
            if (entry.d_tag == DT_RUNPATH || entry.d_tag == DT_RPATH) AddPaths(Text(entry.d_un.d_val), file.runPaths);
        }
    }

    static void AddPaths(const std::string& list, std::vector<std::string>& paths) {
        std::istringstream stream(list);
        for (std::string path; paths.size() < kMostEntries && std::getline(stream, path, ':');) paths.push_back(path);
    }

    // The table does not say where it ends, but a section does, and it usually ends where the strings begin.
    size_t CountSymbols() const {
        for (size_t i = 0; i < fHeader.e_shnum; ++i) {
            TSection section{};
            if (!Get(fHeader.e_shoff + i * sizeof section, section)) break;
            if (section.sh_type == SHT_DYNSYM && section.sh_offset == fSymbols)
                return std::min<size_t>(section.sh_size / sizeof(TSymbolEntry), kMostSymbols);
        }
        return fTexts > fSymbols ? std::min((fTexts - fSymbols) / sizeof(TSymbolEntry), kMostSymbols) : 0;
    }

    void ReadSymbols(TElfFile& file) {
        const size_t count = CountSymbols();
        size_t room = 2 * fBytes.size();  // for names, which may be parts of each other
        TSymbolEntry symbol{};
        for (size_t i = 1; i < count && Get(fSymbols + i * sizeof symbol, symbol); ++i) {
            const bool isHidden = VisibilityOf(symbol) == STV_HIDDEN || VisibilityOf(symbol) == STV_INTERNAL;
            if (BindingOf(symbol) == STB_LOCAL || isHidden) continue;
            const bool isDefined = symbol.st_shndx != SHN_UNDEF;
            file.symbols.push_back({Text(symbol.st_name), isDefined, BindingOf(symbol) == STB_GLOBAL});
            const size_t size = sizeof symbol + file.symbols.back().name.size();
            if (size > room) return void(file.fault = kDamaged);
            room -= size;
        }
    }

    std::string_view fBytes;
    THeader fHeader{};
    std::vector<TSegment> fSegments;
    TSegment fDynamic{};
    size_t fTexts = 0;
    size_t fTextSize = 0;
    size_t fSymbols = 0;
};

std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw TCommandError(eExitNothing, path + ": cannot be read");
    file.seekg(0, std::ios::end);
    const auto size = static_cast<size_t>(std::max<std::streamoff>(file.tellg(), 0));
    std::string bytes(std::min(size, kMostBytes), '\0');
    file.seekg(0);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    return bytes;
}

}  // namespace

bool TElfFile::Refers(const std::string& symbol) const {
    return std::any_of(symbols.begin(), symbols.end(),
                       [&](const TSymbol& each) { return !each.isDefined && each.name == symbol; });
}

TElfFile ReadElfFile(const std::string& path) {
    const std::string bytes = ReadBytes(path);
    return TElfReader(bytes).Read();
}

bool HoldsWord(const std::string& path, const std::string& word) {
    const std::string bytes = ReadBytes(path), constant = word + '\0';
    const auto isNamePart = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; };
    for (size_t at = bytes.find(constant); at != std::string::npos; at = bytes.find(constant, at + 1))
        if (at == 0 || !isNamePart(bytes[at - 1])) return true;
    return false;
}
