#include "CaretTag.h"
#include "Desktop.h"
#include "MainWindowSeams.h"
#include "RulesFixture.h"

using namespace vmk;
using namespace Qt::StringLiterals;

namespace {

class Tags : public Rules
{
protected:
    Tags() { SoundsOn = 1; }

    QString status;
    const SeamGuard<void(const QString&)> guard{StatusSeam(),
                                                [this](const QString& message) { status = message; }};
};

} // namespace

TEST_F(Tags, TheTagIsFoundFromAnyPositionInside)
{
    show("<DIV>text &lt;a l:href=\"#n1\" id=\"x\"&gt;link&lt;/a&gt;</DIV>");
    for (int offset = 6; offset < 28; ++offset) {
        caret(0, offset);
        const CaretTag tag = GetTagUnderCaret(document);
        EXPECT_EQ(tag.text, u"<a l:href=\"#n1\" id=\"x\">"_s) << offset;
    }
    caret(0, 8);
    const CaretTag tag = GetTagUnderCaret(document);
    EXPECT_EQ(tag.href, u"n1"_s);
    EXPECT_EQ(tag.id, u"x"_s);
    EXPECT_EQ(tag.name, u"a"_s);
    EXPECT_TRUE(tag.isLink());
    EXPECT_FALSE(tag.isImage());
}

TEST_F(Tags, OutsideATagThereIsNone)
{
    show("<DIV>text&lt;p&gt;text</DIV>");
    for (const int offset : {0, 2, 4, 7, 9, 11}) {
        caret(0, offset);
        EXPECT_TRUE(GetTagUnderCaret(document).text.isEmpty()) << offset;
    }
}

TEST_F(Tags, ATagMoreThanFiftyCharactersToTheLeftIsNotFound)
{
    const QByteArray name(60, 'x');
    show("<DIV>&lt;" + name + "&gt;</DIV>");
    caret(0, 51);
    EXPECT_FALSE(GetTagUnderCaret(document).text.isEmpty());
    caret(0, 53);
    EXPECT_TRUE(GetTagUnderCaret(document).text.isEmpty());
}

TEST_F(Tags, AnyTagWithALinkWhoseNameBeginsWithACountsAsALink)
{
    EXPECT_TRUE(ParseTagAttributes(u"<annotation l:href=\"#x\">"_s).isLink());
    EXPECT_FALSE(ParseTagAttributes(u"<image l:href=\"#x\"/>"_s).isLink());
    EXPECT_TRUE(ParseTagAttributes(u"<image l:href=\"#x\"/>"_s).isImage());
    EXPECT_FALSE(ParseTagAttributes(u"<p>"_s).hasTarget());
}

TEST_F(Tags, ABookmarkIsFoundAndSelected)
{
    show("<DIV>&lt;a href=\"#n1\"&gt;</DIV>\r<DIV>&lt;section id=\"n1\"&gt;</DIV>");
    GoToBookmark(document, ParseTagAttributes(u"<a href=\"#n1\">"_s));
    EXPECT_EQ(status, u"found: id=\"n1\""_s);
    EXPECT_EQ(selected(), "id=\"n1\"");
    GoToBookmark(document, ParseTagAttributes(u"<a href=\"#n2\">"_s));
    EXPECT_EQ(status, u"not found: id=\"n2\""_s);
    EXPECT_EQ(selected(), "id=\"n1\"");
}

TEST_F(Tags, ADuplicateIdIsReportedAlsoInText)
{
    show("<DIV>&lt;p id=\"a\"&gt;</DIV>\r<DIV>&lt;p id=\"b\"&gt; and id=\"b\" in text</DIV>");
    CheckId(document, ParseTagAttributes(u"<p id=\"a\">"_s));
    EXPECT_EQ(status, u"id is OK: id=\"a\""_s);
    CheckId(document, ParseTagAttributes(u"<p id=\"b\">"_s));
    EXPECT_EQ(status, u"id already exists: id=\"b\""_s);
    status.clear();
    CheckId(document, ParseTagAttributes(u"<p>"_s));
    EXPECT_TRUE(status.isEmpty());
}

TEST_F(Tags, WithSoundsOffALinkWithoutTargetBeepsAndADoubleIdDoesNot)
{
    SoundsOn = 0;
    int beeps = 0;
    const SeamGuard<void()> ear{BeepSeam(), [&beeps] { ++beeps; }};
    show("<DIV>&lt;p id=\"b\"&gt;&lt;p id=\"b\"&gt;</DIV>");
    CheckId(document, ParseTagAttributes(u"<p id=\"b\">"_s));
    EXPECT_EQ(status, u"id already exists: id=\"b\""_s);
    EXPECT_EQ(beeps, 0);
    GoToBookmark(document, ParseTagAttributes(u"<a href=\"#b\">"_s));
    EXPECT_EQ(beeps, 0);
    GoToBookmark(document, ParseTagAttributes(u"<a href=\"#c\">"_s));
    EXPECT_EQ(beeps, 1);
}

TEST_F(Tags, AnIdThatWasRemovedFromTheBookIsOk)
{
    show("<DIV>text</DIV>");
    CheckId(document, ParseTagAttributes(u"<p id=\"gone\">"_s));
    EXPECT_EQ(status, u"id is OK: id=\"gone\""_s);
}

TEST_F(Tags, AnImageIsIdentifiedByTheStartOfItsResourceId)
{
    const CaretTag image = ParseTagAttributes(u"<IMAGE l:href=\"#pic\"/>"_s);
    const TagEntries known = EntriesFor(image, "<binary ID=\"PIC.png\">");
    EXPECT_EQ(known, (TagEntries{.showImage = true, .removeImageResource = true}));
    EXPECT_EQ(EntriesFor(image, "<binary id=\"other.png\">"), TagEntries{.addImageResource = true});
    // An anchor is not an image; a tag with only an id is only that.
    EXPECT_EQ(EntriesFor(ParseTagAttributes(u"<annotation l:href=\"#x\" id=\"y\">"_s), {}),
              (TagEntries{.goToLink = true, .checkId = true}));
    EXPECT_EQ(EntriesFor(ParseTagAttributes(u"<p style=\"x\">"_s), {}), TagEntries());
}
