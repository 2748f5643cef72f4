// The system's text classes at their edges: empty forms, searches, pieces, order and numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <vector>

#include "../foundation/TSString.h"
#include "../foundation/TSUnicodeString.h"
#include "../include/InterfaceIds.h"

namespace {

const uint64_t kNotFound = TSString::maxLen;

TEST(TSString, EmptyFormsHaveNoBufferButAnEmptyText)
{
    for (const TSString& empty : {TSString(nullptr), TSString(""), TSString("abc", 0), TSString("x").Substr(1),
                                  TSString(static_cast<const wchar_t*>(nullptr))}) {
        EXPECT_EQ(empty.Size(), 0u);
        EXPECT_EQ(empty.Data(), nullptr);
        EXPECT_STREQ(empty.ConstData(), "");
        EXPECT_TRUE(empty.IsEmpty());
    }
    EXPECT_EQ(TSString("abc")[3], 0);
    EXPECT_EQ(TSString("\xC3")[0], -61);   // bytes are sign-extended
}

TEST(TSString, SearchesAndPiecesStopAtTheEnds)
{
    const TSString abc("abc"), abcabc("abcabc");
    const std::vector<std::pair<uint64_t, uint64_t>> searches = {
        {abc.IndexOf(TSString("abcd")), kNotFound},   {abcabc.IndexLastOf(TSString("bc")), 4},
        {abc.IndexOf(TSString("c"), 3), kNotFound},   {abcabc.IndexOf(TSString("c"), 3), 5},
        {abc.IndexOf(TSString("")), 0},               {abc.IndexLastOf(TSString("")), 3},
        {abc.IndexOf(TSString(""), 3), kNotFound},    {abcabc.IndexOfIgnoreCase(TSString("CA")), 2},
        {abcabc.IndexOf(TSString("CA")), kNotFound},  {abc.IndexLastOf(TSString("abc")), 0},
    };
    for (size_t row = 0; row < searches.size(); ++row)
        EXPECT_EQ(searches[row].first, searches[row].second) << "row " << row;
    EXPECT_TRUE(abc.Substr(3).IsEmpty());
    EXPECT_TRUE(abc.Substr(7, 2).IsEmpty());
    EXPECT_EQ(abc.Substr(1, 100), TSString("bc"));
    EXPECT_EQ(abc.Substr(0, 2), TSString("ab"));
}

TEST(TSString, ReplaceNeverScansWhatItInserted)
{
    EXPECT_EQ(TSString("aaa").Replace(TSString("a"), TSString("aa")), TSString("aaaaaa"));
    EXPECT_EQ(TSString("a b c").Replace(TSString(" "), TSString("%20")), TSString("a%20b%20c"));
    const TSString original("xyx");
    EXPECT_EQ(original.Replace(TSString("x"), TSString("")), TSString("y"));
    EXPECT_EQ(original, TSString("xyx"));
}

TEST(TSString, CopiesCarryZeroBytesAndAppendsJoin)
{
    const TSString withZero("a\0b", 3);
    TSString copy;
    copy = withZero;
    EXPECT_EQ(copy.Size(), 3u);
    EXPECT_EQ(copy[2], 'b');
    EXPECT_EQ(withZero, TSString("a\0c", 3));   // compared as C text, up to the first zero
    TSString joined("ab");
    joined += "cd";
    joined += static_cast<const char*>(nullptr);
    EXPECT_EQ(joined + TSString("e") + "f", TSString("abcdef"));
    EXPECT_EQ(joined, TSString("abcd"));
    EXPECT_EQ(TSString("aB\xC3").ToUpper(), TSString("AB\xC3"));
    EXPECT_TRUE(TSString("aBc").EqualsIgnoreCase(TSString("AbC")));
}

TEST(TSString, LongerStringsSortFirst)
{
    std::vector<TSString> keys = {TSString("b"), TSString(""), TSString("a"), TSString("bb"), TSString("abc")};
    std::sort(keys.begin(), keys.end());
    const std::vector<TSString> expected = {TSString("abc"), TSString("bb"), TSString("a"), TSString("b"),
                                            TSString("")};
    EXPECT_EQ(keys, expected);
    EXPECT_FALSE(TSString("") < TSString(""));
}

TEST(TSString, NumbersAndIdentifiersAsText)
{
    const std::vector<std::pair<const char*, int32_t>> longs = {
        {"", 7}, {"x", 7}, {"-3", -3}, {"  12abc", 12}, {"4294967295", -1}, {"4294967296", 0}};
    for (const auto& [text, value] : longs)
        EXPECT_EQ(TSString(text).GetLong(7), value) << text;
    EXPECT_EQ(TSString("").GetULong(9), 9u);
    EXPECT_EQ(TSString("4000000000").GetULong(9), 4000000000u);
    EXPECT_EQ(TSString().FromInt(-42), TSString("-42"));
    EXPECT_EQ(TSString().FromDword(4000000000u), TSString("4000000000"));
    EXPECT_EQ(TSString().FromGUID(_GUID{}), TSString("00000000-0000-0000-0000-000000000000"));
    const _GUID guid = {0xFFFFFFFFF6E85D4Eull, 0xDC38, 0x476C, {0xAC, 0x59, 0xEB, 0x50, 0x0B, 0xA9, 0x3C, 0xDC}};
    EXPECT_EQ(TSString().FromGUID(guid), TSString("f6e85d4e-dc38-476c-ac59-eb500ba93cdc"));
}

TEST(TSString, PlatformAndWideTextMeetAsUtf8)
{
    const std::string platform = "gr\xC3\xBC\xC3\x9F";
    EXPECT_EQ(TSString().FromCFString(&platform).GetCFString(), platform);
    EXPECT_TRUE(TSString("x").FromCFString(nullptr).IsEmpty());
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(TSString(L"gr\u00FC\u00DF"), TSString(platform.c_str()));
    EXPECT_EQ(TSString(L"abc", 2), TSString("ab"));
    EXPECT_EQ(TSUnicodeString(L"abc").Size(), 3u);
    std::setlocale(LC_CTYPE, "C");
    EXPECT_TRUE(TSString(L"\u00FC").IsEmpty());   // no conversion in the plain C locale
}

} // namespace
