// Compares replace-all in the document with the plain one, on random pages and on real books: text, tags,
// marks, and every undo step.

#include "SearchReference.h"
#include "BookToDisplay.h"
#include "Corpus.h"
#include "PageMaker.h"
#include "SearchFixture.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using reference::Dice;
using reference::PlainDocument;
using reference::ReplaceOrder;
using reference::Token;

class SearchReference : public SearchFixture
{
protected:
    /// The document's lines as the plain document writes them.
    [[nodiscard]] QString written()
    {
        QString html;
        for (int node = 1; node <= document.lineCount(); ++node)
            html += (node > 1 ? u"\r\n"_s : QString()) + page::item(document, node).outerHTML();
        return html;
    }

    /// The same page as a plain document.
    [[nodiscard]] PlainDocument plainCopy() const
    {
        PlainDocument plain;
        plain.tokens.clear();
        for (int i = 0; i < document.lineCount(); ++i) {
            const Line& line = document.line(i);
            const auto tagText
                = [this](TagId tag) { return document.tags()[tag].startTag().sliced(1).chopped(1); };
            plain.tokens.push_back(reference::tagToken(Token::LineStart, tagText(line.block)));
            int at = 0;
            const auto copyTo = [&](int end) {
                for (; at < end; ++at)
                    plain.tokens.push_back(reference::characterToken(line.text[at]));
            };
            for (const Mark& mark : line.marks) {
                copyTo(mark.pos);
                plain.tokens.push_back(
                    reference::tagToken(mark.open ? Token::Open : Token::Close, tagText(mark.tag)));
            }
            copyTo(int(line.text.size()));
        }
        return plain;
    }

    void showRandomPage(Dice& dice)
    {
        static const QStringList Words
            = {u"ab"_s,     u"Ab"_s,         u"b"_s,      u"a-b"_s,    u"."_s,         u"&amp;"_s,
               u"&nbsp;"_s, u"\U0001f600"_s, u"\u044f"_s, u"\u042f"_s, u"&lt;p&gt;"_s, u"a"_s};
        static const QStringList Tags = {u"B"_s, u"SPAN class=t"_s, u"FONT class=n"_s};
        QString page;
        const int lines = 1 + dice.roll(5);
        for (int i = 0; i < lines; ++i) {
            page += u"<DIV>x"_s;
            QStringList open;
            const int pieces = 1 + dice.roll(25);
            for (int piece = 0; piece < pieces; ++piece) {
                if (dice.roll(4) == 0 && open.size() < 4) {
                    open.append(Tags[dice.roll(3)]);
                    page += u'<' + open.last() + u'>';
                }
                page += Words[dice.roll(int(Words.size()))];
                if (dice.roll(3) == 0)
                    page += u' ';
                if (dice.roll(3) == 0 && !open.isEmpty())
                    page += u"</"_s + open.takeLast().section(u' ', 0, 0) + u'>';
            }
            while (!open.isEmpty())
                page += u"</"_s + open.takeLast().section(u' ', 0, 0) + u'>';
            page += u"y</DIV>"_s;
        }
        show(page);
    }

    void take(const ReplaceOrder& order)
    {
        options.matchCase = order.matchCase;
        options.wholeWord = order.wholeWord;
        options.markReplaced = order.markReplaced;
    }
};

TEST_F(SearchReference, PlainReplaceAllAgreesOnRandomPages)
{
    const QStringList sought = {u"a"_s,  u"ab"_s,     u"b a"_s,  u"\u042f"_s,     u".a"_s,
                                u"<p"_s, u"\u00a0"_s, u"y\rx"_s, u"\U0001f600"_s, u"b"_s};
    const QStringList replacements = {u""_s, u"z"_s, u"ab"_s, u"\u00a0long text"_s, u"1\r2"_s, u"-"_s};
    Dice dice(7);
    for (int episode = 0; episode < 1500 && !HasFailure(); ++episode) {
        showRandomPage(dice);
        ReplaceOrder order;
        order.find = sought[dice.roll(int(sought.size()))];
        order.replacement = replacements[dice.roll(int(replacements.size()))];
        order.matchCase = dice.roll(2) == 0;
        order.wholeWord = dice.roll(3) == 0;
        order.markReplaced = dice.roll(2) == 0;
        take(order);
        const QString before = written();
        PlainDocument plain = plainCopy();
        const int steps = reference::replaceAll(plain, 0, order);
        EXPECT_EQ(replaceAll(order.find, order.replacement), steps) << episode;
        const QString after = written();
        EXPECT_EQ(after.toStdString(), plain.html().toStdString())
            << episode << " " << order.find.toStdString() << " in " << before.toStdString();
        for (int i = 0; i < steps; ++i)
            EXPECT_TRUE(document.undo());
        EXPECT_EQ(written().toStdString(), before.toStdString()) << episode;
        EXPECT_FALSE(document.canUndo());
        EXPECT_EQ(document.redo(std::max(1, steps)), steps > 0);
        EXPECT_EQ(written().toStdString(), after.toStdString()) << episode;
    }
}

TEST_F(SearchReference, RunsUndoneInPartAreAsIfMadeInPart)
{
    Dice dice(11);
    for (int episode = 0; episode < 300 && !HasFailure(); ++episode) {
        showRandomPage(dice);
        options.markReplaced = dice.roll(2) == 0;
        std::vector<QString> states = {written()};
        // Each step by itself.
        const int steps = replaceAll(u"a"_s, u"xyz"_s);
        document.undo(std::max(1, steps));
        for (int i = 0; i < steps; ++i) {
            EXPECT_TRUE(document.redo());
            states.push_back(written());
        }
        for (int i = 0; i < 20 && steps > 0; ++i) {
            // From the end to any step and back.
            const int back = 1 + dice.roll(steps);
            EXPECT_TRUE(document.undo(back));
            EXPECT_EQ(written().toStdString(), states[size_t(steps - back)].toStdString());
            EXPECT_TRUE(document.canRedo());
            EXPECT_TRUE(document.redo(back));
            EXPECT_EQ(written().toStdString(), states.back().toStdString());
            EXPECT_FALSE(document.canRedo());
        }
        if (steps < 2)
            continue;
        // An edit discards the steps that were undone.
        document.undo(1);
        document.setSelection({}, {});
        document.typeText(u"!"_s);
        EXPECT_FALSE(document.canRedo());
        EXPECT_TRUE(document.undo());
        EXPECT_EQ(written().toStdString(), states[size_t(steps - 1)].toStdString());
        EXPECT_TRUE(document.undo(steps - 1));
        EXPECT_EQ(written().toStdString(), states.front().toStdString());
        EXPECT_FALSE(document.canUndo());
    }
}

TEST_F(SearchReference, RangesAndSelectionFollowAsInSingleEdits)
{
    Dice dice(13);
    for (int episode = 0; episode < 500 && !HasFailure(); ++episode) {
        showRandomPage(dice);
        PlainDocument plain = plainCopy();
        std::vector<TextRange> ranges;
        for (int i = 0; i < 8; ++i) {
            const int from = dice.roll(plain.length() + 1);
            const TextRange range(document, document.positionAt(from),
                                  document.positionAt(dice.roll(plain.length() + 1)));
            ranges.push_back(range);
            plain.ranges.push_back(
                {int(document.characterIndex(range.start())), int(document.characterIndex(range.end()))});
        }
        ReplaceOrder order;
        order.find = u"b"_s;
        order.replacement = dice.roll(2) == 0 ? u"long"_s : u""_s;
        const int steps = reference::replaceAll(plain, 0, order);
        EXPECT_EQ(replaceAll(order.find, order.replacement), steps);
        for (size_t i = 0; i < ranges.size(); ++i) {
            EXPECT_EQ(document.characterIndex(ranges[i].start()), plain.ranges[i].from) << episode;
            EXPECT_EQ(document.characterIndex(ranges[i].end()), plain.ranges[i].to) << episode;
        }
    }
}

TEST_F(SearchReference, RegExpReplaceAllAgreesOnRandomPages)
{
    const QStringList patterns = {u"a+"_s,       u"\\bab\\b"_s, u"(a)-(b)"_s, u"[^<>]b"_s,  u"y\\rx"_s,
                                  u"(\\w)(.)"_s, u"&amp;|b"_s,  u"\u00a0."_s, u"\u044f+"_s, u"x*"_s};
    const QStringList templates = {u""_s, u"z"_s, u"$2$1"_s, u"[$&]"_s, u"$1"_s, u"a long replacement"_s};
    Dice dice(17);
    for (int episode = 0; episode < 1500 && !HasFailure(); ++episode) {
        showRandomPage(dice);
        ReplaceOrder order;
        order.find = patterns[dice.roll(int(patterns.size()))];
        order.replacement = templates[dice.roll(int(templates.size()))];
        order.matchCase = dice.roll(2) == 0;
        order.markReplaced = dice.roll(2) == 0;
        take(order);
        const QString before = written();
        PlainDocument plain = plainCopy();
        const auto steps = reference::regExpReplaceAll(plain, 0, order);
        ASSERT_TRUE(steps);
        EXPECT_EQ(replaceAllRegExp(order.find, order.replacement), *steps) << episode;
        EXPECT_EQ(written().toStdString(), plain.html().toStdString())
            << episode << " " << order.find.toStdString() << " in " << before.toStdString();
        undo(*steps);
        EXPECT_EQ(written().toStdString(), before.toStdString()) << episode;
    }
}

TEST_F(SearchReference, ChunksAgree)
{
    // Few matches, because the plain document copies itself for each of them.
    Dice dice(19);
    QString page;
    for (int line = 0; line < 60; ++line) {
        page += u"<DIV>"_s;
        for (int word = 0; word < 500; ++word) {
            page += dice.roll(700) == 0 ? u"<B>q1</B>-q2"_s
                                        : QString(1 + dice.roll(6), QChar(u'a' + dice.roll(5)));
            page += dice.roll(9) == 0 ? u", "_s : u" "_s;
        }
        page += u"end</DIV>"_s;
    }
    show(page);
    ReplaceOrder order;
    order.find = u"(q1)-(q2)"_s;
    order.replacement = u"$2 $1 uni(65)"_s;
    order.markReplaced = true;
    take(order);
    PlainDocument plain = plainCopy();
    ASSERT_GT(plain.length(), 120'000);
    const auto steps = reference::regExpReplaceAll(plain, 0, order);
    ASSERT_TRUE(steps);
    EXPECT_GT(*steps, 50);
    EXPECT_EQ(replaceAllRegExp(order.find, order.replacement), *steps);
    EXPECT_TRUE(written() == plain.html());
}

/// Returns a word from the middle of a text that occurs 3 to 12 times: the plain document is slow.
QString RareWord(const QString& text)
{
    const QStringList words = text.mid(text.size() / 2, 20'000).split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words) {
        const qsizetype count = text.count(word, Qt::CaseInsensitive);
        if (word.size() >= 4 && count >= 3 && count <= 12)
            return word;
    }
    return words.value(0);
}

TEST_F(SearchReference, PlainReplaceAllAgreesOnRealBooks)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    constexpr size_t MostBytes = 400'000;
    constexpr int MostBooks = 6;
    int books = 0;
    for (const test::CorpusBook& book : test::CorpusBooks()) {
        std::string page = book.bytes;
        if (page.size() > MostBytes || books == MostBooks || !ConvertBookToDisplay(page, false))
            continue;
        ++books;
        document.loadPage(QByteArray::fromStdString(page));
        start();
        ReplaceOrder order;
        order.find = RareWord(page::innerText(document).replace(u"\r\n"_s, u" "_s));
        order.replacement = u"<new>\u00a0text"_s;
        order.markReplaced = books % 2 == 0;
        take(order);
        const QString before = written();
        PlainDocument plain = plainCopy();
        const int steps = reference::replaceAll(plain, 0, order);
        EXPECT_GT(steps, 0) << book.name;
        EXPECT_EQ(replaceAll(order.find, order.replacement), steps) << book.name;
        EXPECT_TRUE(written() == plain.html()) << book.name << " " << order.find.toStdString();
        document.undo(steps);
        EXPECT_TRUE(written() == before) << book.name;
    }
    EXPECT_GT(books, 0);
}

} // namespace
} // namespace vmk
