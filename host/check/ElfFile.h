#ifndef KYR_HOST_CHECK_ELFFILE_H
#define KYR_HOST_CHECK_ELFFILE_H

#include <string>
#include <vector>

/// What the dynamic linker reads of a shared library, for the kind of machine that kyr runs on. The file is only read,
/// never opened as a library, which would run its constructors.
struct TElfFile {
    struct TSymbol {
        std::string name;
        bool isDefined;
        bool isGlobal;  ///< not weak, nor unique in the process as parts of templates are
    };

    std::string fault = {};  ///< why it is no library that can be opened; then nothing else is known
    std::vector<TSymbol> symbols = {};
    std::vector<std::string> needed = {};
    std::vector<std::string> runPaths = {};
    bool hasExecutableStack = false;
    bool hasTextRelocations = false;

    bool Refers(const std::string& symbol) const;
};

/// Reads the file, whatever is in it. Raises TCommandError with eExitNothing if it cannot be read at all.
TElfFile ReadElfFile(const std::string& path);

/// Whether the word stands in the file as a text of its own, or at the end of one, as a string constant does.
bool HoldsWord(const std::string& path, const std::string& word);

#endif
