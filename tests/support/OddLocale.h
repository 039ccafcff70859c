#ifndef ODDLOCALE_H
#define ODDLOCALE_H

#include <ctype.h>

#include <algorithm>

/// A locale for this thread and the length of a test that treats ASCII in its own way, as Turkish ones do: the capitals
/// I and V become letters beyond ASCII, and Q is no letter. The C library's own tables are swapped for it, because no
/// such locale may be installed.
class TOddLocale {
public:
    TOddLocale() : fLowerBefore(*__ctype_tolower_loc()), fClassesBefore(*__ctype_b_loc()) {
        std::copy(fLowerBefore - kNegative, fLowerBefore + kCharacters, fLower);
        std::copy(fClassesBefore - kNegative, fClassesBefore + kCharacters, fClasses);
        MakeOdd('I', 0xfd);
        MakeOdd('V', 0xfe);
        fClasses[kNegative + 'q'] = 0;
        *__ctype_tolower_loc() = fLower + kNegative;
        *__ctype_b_loc() = fClasses + kNegative;
    }
    ~TOddLocale() {
        *__ctype_tolower_loc() = fLowerBefore;
        *__ctype_b_loc() = fClassesBefore;
    }
    TOddLocale(const TOddLocale&) = delete;
    TOddLocale& operator=(const TOddLocale&) = delete;

private:
    static constexpr int kNegative = 128, kCharacters = 256;

    void MakeOdd(int capital, int lower) {
        fLower[kNegative + capital] = lower;
        fClasses[kNegative + lower] = fClasses[kNegative + 'a'];
    }

    const int* fLowerBefore;
    const unsigned short* fClassesBefore;
    int fLower[kNegative + kCharacters];
    unsigned short fClasses[kNegative + kCharacters];
};

#endif
