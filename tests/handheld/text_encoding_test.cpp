#include "handheld/text_encoding.h"

#include <gtest/gtest.h>

#include <vector>

namespace hr::tests
{

TEST(TextEncoding, NamesGoToTheHandheldAndBack)
{
    struct Row {
        const char *text;
        const char *stored;
    };
    const Row rows[] = {{"Lok ä/ö", "LOK Ä/Ö  "}, {"abcdefghijk", "ABCDEFGHI"}, {"%é5]|^", "  5]|^   "},
        {"", "         "}, {"ß", "         "}};
    for (const Row &row : rows) {
        std::vector<quint8> codes(11, 99);
        EncodeName(QString::fromUtf8(row.text), codes, 1, 9);
        EXPECT_EQ(DecodeName(codes, 1, 9), QString::fromUtf8(row.stored)) << row.text;
        EXPECT_EQ(codes.front(), 99);
        EXPECT_EQ(codes.back(), 99);
    }
}

TEST(TextEncoding, CodesFollowTheHandheldsTable)
{
    const std::pair<const char *, int> rows[] = {{"0", 0}, {"9", 9}, {"A", 10}, {"Z", 35}, {"Ä", 36}, {"Ü", 38},
        {" ", 39}, {"+", 40}, {".", 42}, {"=", 45}, {"?", 47}, {"]", 52}, {"a", 39}, {"", 39}};
    for (const auto &[character, code] : rows)
        EXPECT_EQ(CharCode(QString::fromUtf8(character)), code) << character;
    const std::vector<quint8> undefined{60, 255, 53};
    EXPECT_EQ(DecodeName(undefined, 0, 3), QString(3, QChar(0xFF)));
}

TEST(TextEncoding, ForeignNamesAreAdapted)
{
    const std::pair<const char *, const char *> rows[] = {
        {"Straße", "STRASSE"}, {"Re 4/4 (alt)", "RE 4/4  ALT "}, {"*!#,", "..+."}, {"100% é", "100   "}, {"", ""}};
    for (const auto &[text, adapted] : rows)
        EXPECT_EQ(AdaptName(QString::fromUtf8(text)), QString::fromUtf8(adapted)) << text;
}

} // namespace hr::tests
