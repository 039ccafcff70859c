#include "model/NumberText.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <tuple>

namespace {
std::istringstream Stream(const std::string& text) {
    std::istringstream stream(text);
    stream.unsetf(std::ios_base::dec);
    stream.setf(std::ios_base::boolalpha);
    return stream;
}

template <typename... T>
struct TNumbers {
    static auto Read(const std::string& text) { return std::tuple(ReadNumber<T>(text)...); }
    static auto ReadByStream(const std::string& text) {
        std::tuple<T...> numbers;
        std::apply([&](T&... number) { (void(Stream(text) >> number), ...); }, numbers);
        return numbers;
    }
};
using TAll = TNumbers<bool, unsigned short, short, unsigned int, int, unsigned long, long, double>;

// Short texts of the characters that mean something in numbers, so that most of them nearly are one.
std::string RandomText(std::mt19937& random) {
    static constexpr char kAlphabet[] = "000112345678999aAfFxX+-. .e\t\0,";
    std::string text(random() % 8, '\0');
    for (char& c : text) c = kAlphabet[random() % (sizeof kAlphabet - 1)];
    return (random() % 8 == 0 ? "0x" : "") + text + (random() % 4 == 0 ? "..7" : "");
}
}  // namespace

TEST(NumberText, IsReadAsAStreamReadsItWithTheCharactersBehind) {
    std::mt19937 random(20041231);
    std::vector<std::string> texts = {"70000", "40000", "-40000", "0xFFFFFFFF", "-1", "18446744073709551616"};
    while (texts.size() < 20000) texts.push_back(RandomText(random));
    for (const std::string& text : texts) {
        EXPECT_EQ(TAll::Read(text), TAll::ReadByStream(text)) << text;
        char first = 'p', second = 'q', streamFirst = 'p', streamSecond = 'q';
        unsigned long number = 0;
        Stream(text) >> number >> streamFirst >> streamSecond;
        EXPECT_EQ(ReadNumberAndTail(text, first, second), number) << text;
        EXPECT_EQ(std::string({first, second}), std::string({streamFirst, streamSecond})) << text;
    }
}
