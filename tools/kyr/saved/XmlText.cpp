#include "saved/XmlText.h"

namespace {

// Control characters too: other readers change a CR, and refuse most of the rest when they stand there plainly.
bool IsPlain(unsigned char c) {
    return (c >= ' ' && c != '<' && c != '&' && c != '>' && c != 0x7f) || c == '\t' || c == '\n';
}

std::string Escape(unsigned char c) {
    if (c == '<') return "&lt;";
    if (c == '&') return "&amp;";
    if (c == '>') return "&gt;";
    return "&#" + std::to_string(c) + ";";
}

}  // namespace

void AppendXmlText(std::string& target, std::string_view text) {
    size_t done = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (IsPlain(c)) continue;
        target.append(text, done, i - done).append(Escape(c));
        done = i + 1;
    }
    target.append(text, done);
}
