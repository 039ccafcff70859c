#include "base/ExitStatus.h"
#include "check/Check.h"
#include "check/Markup.h"
#include "saved/DocumentText.h"

namespace {

constexpr size_t kMostBytes = size_t{32} << 20;

std::string ReadText(const std::string& path) {
    std::string text;
    const bool isRead = ForEachPiece(path, [&text](std::string_view piece) {
        if (text.size() <= kMostBytes) text.append(piece);
    });
    if (!isRead) throw TCommandError(eExitNothing, path + ": cannot be read");
    return text;
}

}  // namespace

void CheckDocument(const std::string& path, const TCheckContext& context, TFindings& findings) {
    (void)context;
    const std::string text = ReadText(path);
    const TMarkup markup = ReadMarkup(path, text, findings);
}
