#ifndef KYR_HOST_BASE_OUTPUT_H
#define KYR_HOST_BASE_OUTPUT_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

/// Standard output, or what stands in its place. What cannot be written raises TCommandError with eExitOutput.
class TOutput {
public:
    using TWrite = std::function<void(std::string_view)>;

    static constexpr size_t kUnlimited = 1 << 30;  ///< columns of a line that is never broken

    TOutput();
    /// Hands all that is written to the function.
    explicit TOutput(TWrite write) : fWrite(std::move(write)) {}

    void Write(std::string_view text);
    /// Writes a visible text in lines that fit the output and have at most that many columns. The first line stands
    /// behind start, which must be ASCII; the others are indented by as many blanks.
    void WriteWrapped(std::string_view visible, std::string start, size_t columns = kUnlimited);
    /// Must be called once at the end: what is still buffered is written then, which may fail like any other write.
    void Flush();
    /// Whether a pager reads it. A pager that the user left takes no more, and that is no failure: the rest is dropped.
    /// Must be set to false, which writes what is left, before standard output is another one again.
    void SetPaged(bool isPaged);
    /// Makes Flush fail for that reason: what was written has not arrived.
    void SetFailure(const std::string& reason) { fFailure = reason; }
    /// How many columns a line may take: the value of COLUMNS, or the width of the terminal; kUnlimited for a file or a
    /// pipe.
    size_t Width() const { return fWidth; }
    /// Whether standard output is a terminal, also if a pager reads it.
    bool IsTerminal() const { return fTerminal; }
    /// The text in bold, or dimmed, if standard output is a terminal that may be coloured.
    std::string Bold(const std::string& text) const;
    std::string Dim(const std::string& text) const;

private:
    void HandleFailure();

    bool fPaged = false;
    bool fDropping = false;  // the user has left the pager
    std::string fFailure;
    const TWrite fWrite;  // none: standard output
    bool fTerminal = false;
    bool fColour = false;
    size_t fWidth = kUnlimited;
};

/// Prints one line on standard error, with "kyr: " in front.
void PrintDiagnostic(const std::string& text);

/// Opens those of descriptors 0 to 2 that the caller closed. Otherwise a file that is opened later would get such a
/// number, and messages would be written into it. Writing to a closed standard output still fails.
void OpenMissingStandardStreams();

#endif
