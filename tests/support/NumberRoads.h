#ifndef NUMBERROADS_H
#define NUMBERROADS_H

#include <locale>
#include <sstream>
#include <string>
#include <tuple>

#include "model/NumberText.h"

// Without GoogleTest, so that the fuzz targets can use it, too.

/// A stream in the C locale that finds out the base of a number by itself.
inline std::istringstream BaselessStream(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream.setf(std::ios_base::boolalpha);
    stream.unsetf(std::ios_base::dec);
    return stream;
}

template <typename... TNumbers>
bool IsReadAsNumbersOfAStream(const std::string& text) {
    std::tuple<TNumbers...> numbers;
    std::apply([&](TNumbers&... number) { (void(BaselessStream(text) >> number), ...); }, numbers);
    return numbers == std::tuple(ReadNumber<TNumbers>(text)...);
}

inline bool IsReadWithTheTailOfAStream(const std::string& text) {
    unsigned long number = 0;
    char first = 'p', second = 'q', streamFirst = 'p', streamSecond = 'q';
    BaselessStream(text) >> number >> streamFirst >> streamSecond;
    return ReadNumberAndTail(text, first, second) == number && first == streamFirst && second == streamSecond;
}

/// Whether the core makes of a text what a stream makes of it: each type of number, and a number with its tail.
inline bool IsReadAsByAStream(const std::string& text) {
    return IsReadWithTheTailOfAStream(text) &&
           IsReadAsNumbersOfAStream<bool, unsigned short, short, unsigned int, int, unsigned long, long, float, double>(
               text);
}

#endif
