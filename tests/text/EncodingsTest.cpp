#include "Encodings.h"

#include "BookVariables.h"
#include "CodePages.h"
#include "Corpus.h"
#include "SettingsVariables.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

std::string Utf16(QStringView text)
{
    return EncodeText(text, CodePageUtf16);
}

std::string Swapped(std::string bytes)
{
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

constexpr char BookHead[] = "<?xml version=\"1.0\" encoding=\"Windows-1252\"?>\r\n<FictionBook>";

/// Restores the shared variables that a test changes.
class SharedState : public testing::Test
{
protected:
    void SetUp() override
    {
        InputEncoding = u"original"_s;
        WorkEncodingName = FileEncodingName = XmlDeclaration = WorkMetaTag = FileMetaTag = "untouched";
        WorkCodePage = FileCodePage = -1;
        BookHasCharRefs = false;
    }
    void TearDown() override
    {
        InputEncoding.clear();
        for (std::string* text :
             {&WorkEncodingName, &FileEncodingName, &XmlDeclaration, &WorkMetaTag, &FileMetaTag})
            text->clear();
        WorkCodePage = FileCodePage = 1251;
        BookHasCharRefs = false;
    }
};

using DetectBookEncodingTest = SharedState;
using ConvertBookToUtf8Test = SharedState;
using DetectPreviewEncodingTest = SharedState;

} // namespace

TEST(EncodingCodePage, AcceptsExactlyFiveNames)
{
    EXPECT_EQ(EncodingCodePage("windows-1250"), 1250);
    EXPECT_EQ(EncodingCodePage("windows-1251"), 1251);
    EXPECT_EQ(EncodingCodePage("windows-1252"), 1252);
    EXPECT_EQ(EncodingCodePage("utf-8"), 65001);
    EXPECT_EQ(EncodingCodePage("unicode"), 1200);
    EXPECT_EQ(EncodingCodePage("UTF-8"), 1251) << "only in small letters";
    EXPECT_EQ(EncodingCodePage("koi8-r"), 1251);
    EXPECT_EQ(EncodingCodePage(""), 1251);
}

TEST(IsUnicodeText, SeesTheMarkAndTheStatistics)
{
    EXPECT_TRUE(IsUnicodeText("\xff\xfe"
                              "anything"));
    EXPECT_TRUE(IsUnicodeText(Utf16(u"<?xml version=\"1.0\"?>")));
    EXPECT_TRUE(IsUnicodeText(Utf16(u"Был ясный холодный апрельский день")));
    EXPECT_TRUE(IsUnicodeText(Utf16(u"ЗАГЛАВНЫЕАБВГДЕЖЗИЙКЛМНОП"))) << "low bytes that look like controls";
    EXPECT_TRUE(IsUnicodeText(Utf16(u"Ελληνικά κείμενα")));
    EXPECT_TRUE(IsUnicodeText(Utf16(u"<p>天地玄黃</p><p>宇宙洪荒</p>")));
    EXPECT_FALSE(IsUnicodeText(""));
    EXPECT_FALSE(IsUnicodeText("a"));
}

TEST(IsUnicodeText, IsFalseForOrdinaryText)
{
    const QString texts[] = {u"Bush hid the facts"_s, u"this api can break"_s,
                             u"Был ясный день,\r\n\tи часы"_s, u"a\tb\tc\td\te\tf"_s, u"\r\n\r\n\r\n\r\n"_s};
    for (const QString& text : texts) {
        EXPECT_FALSE(IsUnicodeText(EncodeText(text, 1251))) << text.toStdString();
        EXPECT_FALSE(IsUnicodeText(text.toStdString()));
    }
    EXPECT_FALSE(IsUnicodeText("\xef\xbb\xbf<?xml version=\"1.0\"?>"));
    EXPECT_FALSE(IsUnicodeText(std::string("one stray \0 character in a long line of text", 44)));
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string text(2 + random() % 200, ' ');
        for (char& byte : text)
            byte = static_cast<char>(random() % 4 == 0 ? "\t\r\n "[random() % 4] : 0x20 + random() % 0xe0);
        ASSERT_FALSE(IsUnicodeText(text)) << testing::PrintToString(text);
    }
}

TEST(IsUnicodeText, IsRightForRealBooksInEveryEncoding)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    for (const auto& [name, bytes] : test::CorpusBooks()) {
        EXPECT_FALSE(IsUnicodeText(bytes)) << name;
        const std::string utf16 = Utf8ToBytes(bytes, CodePageUtf16);
        EXPECT_TRUE(IsUnicodeText(utf16)) << name;
        EXPECT_FALSE(IsUnicodeText(Swapped(utf16))) << name;
    }
}

TEST(IsUnicodeText, HighByteFirstIsNotRecognised)
{
    EXPECT_FALSE(IsUnicodeText(Swapped(Utf16(u"<?xml version=\"1.0\"?><p>text</p>"))));
    EXPECT_FALSE(IsUnicodeText("\xfe\xff" + Swapped(Utf16(u"<p>Был ясный день</p>"))));
}

TEST(HasCharRefs, CountsDecimalReferencesOnly)
{
    EXPECT_TRUE(HasCharRefs("a&#160;b"));
    EXPECT_TRUE(HasCharRefs("&#x41; &#9;"));
    EXPECT_FALSE(HasCharRefs("&#xA0;"));
    EXPECT_FALSE(HasCharRefs("&amp;#160; & # &#"));
    EXPECT_FALSE(HasCharRefs(""));
}

TEST(FindBookEncoding, ReadsTheDeclaration)
{
    const DetectedEncoding found = FindBookEncoding(BookHead, "original");
    EXPECT_EQ(found.work.name, "windows-1252");
    EXPECT_EQ(found.work.codePage, 1252);
    EXPECT_EQ(found.work.metaTag,
              "<meta content=\"text/html; charset=windows-1252\" http-equiv=\"Content-Type\">");
    EXPECT_EQ(found.file, found.work);
    EXPECT_EQ(found.declaration, "<?xml version=\"1.0\" encoding=\"windows-1252\"?>") << "in small letters";
}

TEST(FindBookEncoding, WithoutADeclarationOrItsEncodingIsCyrillic)
{
    const DetectedEncoding none = FindBookEncoding("<FictionBook>", "original");
    EXPECT_EQ(none.work, MakeBookEncoding("windows-1251"));
    EXPECT_EQ(none.declaration, "<?xml version=\"1.0\" encoding=\"windows-1251\"?>");

    const DetectedEncoding unnamed = FindBookEncoding("<?XML Version=\"1.0\"?><FictionBook>", "original");
    EXPECT_EQ(unnamed.work, MakeBookEncoding("windows-1251"));
    EXPECT_EQ(unnamed.declaration, "<?xml version=\"1.0\"?>");

    const DetectedEncoding spaced
        = FindBookEncoding("<?xml version=\"1.0\" encoding = \"utf-8\"?>", "original");
    EXPECT_EQ(spaced.work.codePage, 1251) << "blanks round the equals sign hide the name";

    EXPECT_EQ(FindBookEncoding("", "original").work, MakeBookEncoding("windows-1251"));
    EXPECT_EQ(FindBookEncoding("<?xml encoding=\"utf-8\"", "original").work,
              MakeBookEncoding("windows-1251"));
}

TEST(FindBookEncoding, UnknownNameReadsAsCyrillicAndSavesAsUtf8)
{
    const DetectedEncoding found
        = FindBookEncoding("<?xml version=\"1.0\" encoding=\"KOI8-R\"?>", "original");
    EXPECT_EQ(found.work.name, "koi8-r");
    EXPECT_EQ(found.work.codePage, 1251);
    EXPECT_EQ(OutputEncodingInfo(found.file.name).name, "utf-8");
}

TEST(FindBookEncoding, TheByteOrderMarkOfUtf8StaysInFront)
{
    const std::string marked = "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"utf-8\"?><a/>";
    std::string text = marked;
    InputEncoding = QStringLiteral("original");
    DetectBookEncoding(text);
    EXPECT_EQ(WorkCodePage, 65001);
    EXPECT_EQ(XmlDeclaration, "<?xml version=\"1.0\" encoding=\"utf-8\"?>");
    ConvertBookToUtf8(text);
    EXPECT_EQ(text, marked);
}

TEST(FindBookEncoding, SettingOverridesTheWorkEncodingAlone)
{
    const DetectedEncoding found = FindBookEncoding(BookHead, "UTF-8");
    EXPECT_EQ(found.work, MakeBookEncoding("utf-8"));
    EXPECT_EQ(found.file, MakeBookEncoding("windows-1252"));
    EXPECT_EQ(found.declaration, "<?xml version=\"1.0\" encoding=\"windows-1252\"?>");
}

TEST(FindBookEncoding, Utf16CannotBeOverridden)
{
    const DetectedEncoding found
        = FindBookEncoding(Utf16(u"<?xml version=\"1.0\" encoding=\"utf-16\"?>"), "utf-8");
    EXPECT_EQ(found.work.name, "unicode");
    EXPECT_EQ(found.work.codePage, 1200);
    EXPECT_EQ(found.file, found.work);
    EXPECT_EQ(found.declaration, "<?xml version=\"1.0\" encoding=\"unicode\"?>");
}

TEST_F(DetectBookEncodingTest, SetsTheSharedVariables)
{
    InputEncoding = u"windows-1250"_s;
    DetectBookEncoding(BookHead);
    EXPECT_EQ(WorkEncodingName, "windows-1250");
    EXPECT_EQ(WorkCodePage, 1250);
    EXPECT_EQ(WorkMetaTag, "<meta content=\"text/html; charset=windows-1250\" http-equiv=\"Content-Type\">");
    EXPECT_EQ(FileEncodingName, "windows-1252");
    EXPECT_EQ(FileCodePage, 1252);
    EXPECT_EQ(FileMetaTag, "<meta content=\"text/html; charset=windows-1252\" http-equiv=\"Content-Type\">");
    EXPECT_EQ(XmlDeclaration, "<?xml version=\"1.0\" encoding=\"windows-1252\"?>");
}

TEST_F(DetectPreviewEncodingTest, ChangesNoSharedVariableAndReadsNoSetting)
{
    InputEncoding = u"utf-8"_s;
    const DetectedEncoding found = DetectPreviewEncoding(BookHead);
    EXPECT_EQ(found.work, MakeBookEncoding("windows-1252"));
    EXPECT_EQ(WorkEncodingName, "untouched");
    EXPECT_EQ(FileEncodingName, "untouched");
    EXPECT_EQ(XmlDeclaration, "untouched");
    EXPECT_EQ(WorkCodePage, -1);
}

TEST_F(ConvertBookToUtf8Test, ConvertsFromTheWorkCodePage)
{
    WorkCodePage = 1251;
    std::string text = "\xc6\xf3\xea";
    ConvertBookToUtf8(text);
    EXPECT_EQ(text, "Жук");
    EXPECT_FALSE(BookHasCharRefs);

    WorkCodePage = 1200;
    text = "\xff\xfe" + Utf16(u"abc");
    ConvertBookToUtf8(text);
    EXPECT_EQ(text, "abc");
}

TEST_F(ConvertBookToUtf8Test, DoesNotChangeUtf8)
{
    WorkCodePage = 65001;
    BookHasCharRefs = true;
    std::string text("\xc6\xf3\xea &#160;\0", 11);
    const std::string before = text;
    ConvertBookToUtf8(text);
    EXPECT_EQ(text, before);
    EXPECT_FALSE(BookHasCharRefs) << "a book in UTF-8 is never converted a second time";
}

TEST_F(ConvertBookToUtf8Test, LeavesABookWithCharacterReferencesForLater)
{
    WorkCodePage = 1251;
    std::string text = "\xc6&#8212;";
    ConvertBookToUtf8(text);
    EXPECT_EQ(text, "\xc6&#8212;");
    EXPECT_TRUE(BookHasCharRefs);

    text = "\xc6&#xA0;";
    ConvertBookToUtf8(text);
    EXPECT_EQ(text, "Ж&#xA0;") << "hexadecimal ones do not count";
    EXPECT_FALSE(BookHasCharRefs);
}

TEST(UnicodeToCodePage, DropsTheMarkAndConverts)
{
    std::string text = "\xff\xfe" + Utf16(u"Жук");
    EXPECT_TRUE(UnicodeToCodePage(text, 1251));
    EXPECT_EQ(text, "\xc6\xf3\xea");

    text = Utf16(u"Жук \U0001F600");
    EXPECT_TRUE(UnicodeToCodePage(text, 1252));
    EXPECT_EQ(text, "\?\?\? \?\?") << "as many bytes as code units";

    text = Utf16(u"ab") + "c";
    EXPECT_TRUE(UnicodeToCodePage(text, 1252));
    EXPECT_EQ(text, "ab") << "an odd byte is no character";
}

TEST(UnicodeToCodePage, CutsUtf8ToTheNumberOfCharacters)
{
    std::string text = Utf16(u"<p>Жук</p>");
    EXPECT_TRUE(UnicodeToCodePage(text, 65001));
    EXPECT_EQ(text, "<p>Жук<") << "ten characters, ten bytes: the tail is lost";
    text = Utf16(u"<p>bug</p>");
    EXPECT_TRUE(UnicodeToCodePage(text, 65001));
    EXPECT_EQ(text, "<p>bug</p>");
}

TEST(UnicodeToCodePage, NothingToConvertIsFalse)
{
    std::string text;
    EXPECT_FALSE(UnicodeToCodePage(text, 1251));
    text = "\xff\xfe";
    EXPECT_FALSE(UnicodeToCodePage(text, 1251));
    EXPECT_EQ(text, "");
}

TEST(CodePageConversions, RemoveEveryNul)
{
    std::string text("\xc6\0a\0", 4);
    CodePageToUtf8(text, 1251);
    EXPECT_EQ(text, "Жa");
    text = std::string("Ж\0a", 4);
    Utf8ToCodePage(text, 1251);
    EXPECT_EQ(text,
              "\xc6"
              "a");
}

TEST(CodePageConversions, CodePageZeroIsTheSystems)
{
    qputenv("VELLUMARK_CODEPAGE", "1250");
    std::string text = "ř";
    Utf8ToCodePage(text, 0);
    EXPECT_EQ(text, "\xf8");
    CodePageToUtf8(text, 0);
    EXPECT_EQ(text, "ř");
    qunsetenv("VELLUMARK_CODEPAGE");
}

TEST(OutputEncodingInfo, AcceptsFourNamesInAnyCase)
{
    EXPECT_EQ(OutputEncodingInfo("Windows-1251"),
              (SavedEncoding{"windows-1251", "<?xml version=\"1.0\" encoding=\"windows-1251\"?>", 1251}));
    EXPECT_EQ(OutputEncodingInfo("windows-1250").codePage, 1250);
    EXPECT_EQ(OutputEncodingInfo("windows-1252").codePage, 1252);
    const SavedEncoding utf8{"utf-8", "<?xml version=\"1.0\" encoding=\"utf-8\"?>", 65001};
    for (const char* name : {"utf-8", "UTF-8", "unicode", "koi8-r", ""})
        EXPECT_EQ(OutputEncodingInfo(name), utf8) << name;
}
