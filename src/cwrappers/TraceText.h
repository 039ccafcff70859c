#ifndef KYR_CWRAPPERS_TRACETEXT_H
#define KYR_CWRAPPERS_TRACETEXT_H

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>

/// The text of a trace line, in a buffer that the next line reuses. While an object lives, the buffer is its own:
/// logging asks the plugin for its name, and the plugin may make another call that is traced.
class TTraceText {
public:
    explicit TTraceText(std::initializer_list<std::string_view> parts) : TTraceText() {
        size_t length = 0;
        for (const std::string_view part : parts) length += part.size();
        fText->resize(length);
        char* target = fText->data();
        for (const std::string_view part : parts) target = std::copy(part.begin(), part.end(), target);
    }
    ~TTraceText() {
        if (fgSpare || fText->capacity() > kMaxKept)
            delete fText;
        else
            fgSpare = fText;
    }
    TTraceText(const TTraceText&) = delete;
    TTraceText& operator=(const TTraceText&) = delete;

    const std::string& operator*() const { return *fText; }

private:
    TTraceText() : fText(fgSpare ? fgSpare : new std::string) { fgSpare = nullptr; }

    static constexpr size_t kMaxKept = 64 * 1024;

    static inline std::string* fgSpare = nullptr;  // no destructor, because lines are traced until the process ends

    std::string* fText;
};

#endif
