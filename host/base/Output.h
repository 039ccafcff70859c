#ifndef KYR_HOST_BASE_OUTPUT_H
#define KYR_HOST_BASE_OUTPUT_H

#include <cstddef>
#include <string>
#include <string_view>

/// Standard output. What cannot be written ends the command with eExitOutput.
class TOutput {
public:
    static constexpr size_t kUnlimited = 1 << 30;

    TOutput();

    void Write(std::string_view text);
    /// To be called once at the end: only then is all that was written known to have arrived.
    void Flush();
    /// How many columns a line may take: what COLUMNS says, or the terminal; kUnlimited for a file or a pipe.
    size_t Width() const { return fWidth; }
    /// The text in bold, or dimmed, if standard output is a terminal that may be coloured.
    std::string Bold(const std::string& text) const;
    std::string Dim(const std::string& text) const;

private:
    bool fColour;
    size_t fWidth;
};

/// One line on standard error, "kyr: " in front.
void PrintDiagnostic(const std::string& text);

/// Opens descriptors 0 to 2 where our caller closed them, so that no file of ours lands there. A closed standard
/// output stays one that cannot be written.
void OpenMissingStandardStreams();

#endif
