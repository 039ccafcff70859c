#include "model/NumberText.h"

#include <gtest/gtest.h>

#include <random>

#include "support/NumberRoads.h"

namespace {
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
    for (const std::string& text : texts) EXPECT_TRUE(IsReadAsByAStream(text)) << text;
}
