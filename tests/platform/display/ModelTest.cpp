// Random operations on the display document and on its plain counterpart; both must agree on text, marks,
// ranges and selection after each, through undo to the start and redo to the end.

#include "DisplayPage.h"
#include "PageMaker.h"
#include "PlainDocument.h"

#include <gtest/gtest.h>

#include <ostream>

namespace vmk {

namespace {

using reference::Dice;
using reference::PlainDocument;
using reference::Span;
using reference::Token;
using reference::Tokens;

const QStringList Blocks{QStringLiteral("DIV"), QStringLiteral("DIV style=\"MARGIN-LEFT: 5px\""),
                         QStringLiteral("DIV style=\"MARGIN-LEFT: 10px\""), QStringLiteral("P")};
const QStringList InlineTags{QStringLiteral("SPAN class=t"), QStringLiteral("FONT class=n"),
                             QStringLiteral("B"), QStringLiteral("A id=x")};

/// Lines for both documents: as tokens with separate blocks, and as HTML.
struct Fragment
{
    std::vector<Tokens> lines;
    std::vector<QString> blocks; ///< "" for text outside blocks.

    [[nodiscard]] Tokens tokens() const
    {
        Tokens all;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            all.push_back(reference::tagToken(Token::LineStart, blocks[i]));
            all.insert(all.end(), lines[i].begin(), lines[i].end());
        }
        return all;
    }
    [[nodiscard]] QString html() const
    {
        PlainDocument document;
        document.tokens = tokens();
        return document.html();
    }
};

class Episode
{
public:
    explicit Episode(std::uint64_t seed)
        : dice(seed)
    {
        document.loadPage("<DIV id=FirstDiv>a<SPAN class=t>&lt;b&gt;</SPAN></DIV><DIV>c</DIV>");
        plain.tokens = {{Token::LineStart, {}, QStringLiteral("DIV id=FirstDiv")},
                        {Token::Character, u'a', {}},
                        {Token::Open, {}, QStringLiteral("SPAN class=t")},
                        {Token::Character, u'<', {}},
                        {Token::Character, u'b', {}},
                        {Token::Character, u'>', {}},
                        {Token::Close, {}, QStringLiteral("SPAN class=t")},
                        {Token::LineStart, {}, QStringLiteral("DIV")},
                        {Token::Character, u'c', {}}};
        first = plain;
    }

    void step();
    void agree(const char* what);
    void undoAndRedoAll();

    [[nodiscard]] bool failed() const { return ::testing::Test::HasFailure(); }

private:
    struct Step
    {
        Tokens before;
        Tokens after;
        Span selectionBefore;
        Span selectionAfter;
        std::vector<PlainDocument::Edit> edits;
        bool typing = false;
    };

    // Operations of both documents.
    void typeText();
    void pressKey();
    void setText();
    void pasteInline();
    void pasteLines();
    void insertLines();
    void replaceLine();
    void paint();
    void select();
    void makeRange();
    void moveRange();
    void find();
    bool undo();
    bool redo();

    /// Runs an edit of the plain document as one undo step.
    template <class Edit>
    void edit(Edit&& change, bool typing = false)
    {
        const bool joins = typing && done > 0 && done == steps.size() && steps.back().typing
            && plain.anchor == plain.focus;
        Step step{plain.tokens, {}, {plain.anchor, plain.focus}, {}, {}, typing};
        plain.edits.clear();
        change();
        if (joins) {
            // Continued typing extends the edit of the typing step.
            steps.back().edits.back().newEnd = plain.edits.back().newEnd;
        } else {
            step.edits = plain.edits;
            steps.resize(done);
            steps.push_back(step);
            ++done;
        }
        steps.back().after = plain.tokens;
        steps.back().selectionAfter = {plain.anchor, plain.focus};
    }

    [[nodiscard]] QString randomText(int longest, bool withBreaks);
    [[nodiscard]] Tokens randomInline(int longest, bool beginsWithText);
    [[nodiscard]] Fragment randomLines(bool inlineEnds);
    [[nodiscard]] Position place(int index) const { return document.positionAt(index); }
    [[nodiscard]] int index(Position position) const { return int(document.characterIndex(position)); }
    [[nodiscard]] std::size_t anyRange() { return std::size_t(dice.roll(int(ranges.size()))); }
    void putCaret(int index) { plain.anchor = plain.focus = index; }
    [[nodiscard]] int selectionStart() const { return std::min(plain.anchor, plain.focus); }
    [[nodiscard]] int selectionEnd() const { return std::max(plain.anchor, plain.focus); }
    void endTyping()
    {
        if (done > 0)
            steps[done - 1].typing = false;
    }

    Dice dice;
    DisplayDocument document;
    PlainDocument plain;
    PlainDocument first;
    std::vector<TextRange> ranges;
    std::vector<Step> steps;
    std::size_t done = 0;
};

// ---------------------------------------------------------------- random matter

QString Episode::randomText(int longest, bool withBreaks)
{
    constexpr QStringView Letters = u"abAB <>&\u00a0\u042f\u044f.";
    QString text;
    for (int i = dice.roll(longest + 1); i > 0; --i) {
        if (withBreaks && dice.roll(6) == 0)
            text += u'\n';
        else
            text += Letters[dice.roll(int(Letters.size()))];
    }
    return text;
}

Tokens Episode::randomInline(int longest, bool beginsWithText)
{
    Tokens tokens;
    std::vector<QString> open;
    if (beginsWithText)
        tokens.push_back(reference::characterToken(u'x'));
    for (int i = dice.roll(longest + 1); i > 0; --i) {
        const int kind = dice.roll(8);
        if (kind == 0 && open.size() < 3) {
            open.push_back(InlineTags[dice.roll(int(InlineTags.size()))]);
            tokens.push_back(reference::tagToken(Token::Open, open.back()));
        } else if (kind == 1 && !open.empty()) {
            tokens.push_back(reference::tagToken(Token::Close, open.back()));
            open.pop_back();
        } else {
            for (const QChar c : randomText(2, false))
                tokens.push_back(reference::characterToken(c));
        }
    }
    for (; !open.empty(); open.pop_back())
        tokens.push_back(reference::tagToken(Token::Close, open.back()));
    return tokens;
}

Fragment Episode::randomLines(bool inlineEnds)
{
    Fragment fragment;
    const auto add = [&fragment](const QString& block, Tokens line) {
        fragment.blocks.push_back(block);
        fragment.lines.push_back(std::move(line));
    };
    if (inlineEnds && dice.roll(3) == 0)
        add({}, randomInline(4, true));
    for (int i = 1 + dice.roll(3); i > 0; --i)
        add(Blocks[dice.roll(int(Blocks.size()))], randomInline(6, false));
    if (inlineEnds && dice.roll(3) == 0)
        add({}, randomInline(4, true));
    return fragment;
}

// ---------------------------------------------------------------- operations

void Episode::typeText()
{
    const QString text = u'k' + randomText(1, false);
    document.typeText(text);
    edit([&] { putCaret(plain.replaceText(selectionStart(), selectionEnd(), text)); }, true);
}

void Episode::pressKey()
{
    const int from = selectionStart();
    const int to = selectionEnd();
    const int key = dice.roll(4);
    if (key == 0) {
        document.insertLineBreak();
        return edit([&] { putCaret(plain.replaceText(from, to, QStringLiteral("\n"))); });
    }
    if (key == 1)
        document.deleteBackward();
    else if (key == 2)
        document.deleteForward();
    else
        document.deleteSelection();
    if (from != to)
        edit([&] { putCaret(key == 3 ? plain.erase(from, to) : plain.eraseByUser(from, to)); });
    else if (key == 1 && from > 0)
        edit([&] { putCaret(plain.replace(from - 1, from, {Tokens()}, {QString()}, true)); });
    else if (key == 2 && to < plain.length())
        edit([&] { putCaret(plain.replace(to, to + 1, {Tokens()}, {QString()}, true)); });
}

void Episode::setText()
{
    if (ranges.empty())
        return;
    const std::size_t i = anyRange();
    const Span old = plain.ranges[i];
    const QString text = randomText(5, true);
    QString given = text;
    given.replace(u'\n', dice.roll(2) == 0 ? QStringLiteral("\r\n") : QStringLiteral("\r"));
    ranges[i].setText(given);
    int end = old.from;
    if (old.from != old.to || !text.isEmpty())
        edit([&] { end = plain.replaceText(old.from, old.to, text); });
    plain.ranges[i] = {end, end};
}

void Episode::pasteInline()
{
    if (ranges.empty())
        return;
    const std::size_t i = anyRange();
    const Span old = plain.ranges[i];
    const Fragment fragment{{randomInline(6, true)}, {QString()}};
    ranges[i].pasteHTML(fragment.html());
    int end = 0;
    edit([&] { end = plain.paste(old.from, old.to, fragment.lines, fragment.blocks); });
    plain.ranges[i] = {end, end};
}

void Episode::pasteLines()
{
    if (ranges.empty())
        return;
    const std::size_t i = anyRange();
    const Span old = plain.ranges[i];
    const Fragment fragment = randomLines(true);
    ranges[i].pasteHTML(fragment.html());
    int end = 0;
    edit([&] { end = plain.paste(old.from, old.to, fragment.lines, fragment.blocks); });
    plain.ranges[i] = {end, end};
}

void Episode::insertLines()
{
    const int line = dice.roll(plain.lineCount());
    const bool before = dice.roll(2) == 0;
    const Fragment fragment = randomLines(false);
    page::item(document, line + 1)
        .insertAdjacentHTML(before ? Adjacent::BeforeBegin : Adjacent::AfterEnd, fragment.html());
    const bool bare = plain.isBare();
    edit([&] { plain.replaceLines(bare || before ? line : line + 1, bare ? 1 : 0, fragment.tokens()); });
}

void Episode::replaceLine()
{
    const int line = dice.roll(plain.lineCount());
    if (plain.isBare())
        return;
    const Fragment fragment = dice.roll(2) == 0 ? Fragment() : randomLines(false);
    page::item(document, line + 1).setOuterHTML(fragment.lines.empty() ? QString() : fragment.html());
    edit([&] { plain.replaceLines(line, 1, fragment.tokens()); });
}

void Episode::paint()
{
    if (ranges.empty())
        return;
    const std::size_t i = anyRange();
    const bool painted = ranges[i].execCommand(u"BackColor", false, QStringLiteral("#ffb848"));
    const Span span = plain.ranges[i];
    EXPECT_EQ(painted, span.from != span.to);
    if (painted) {
        edit([&] {
            plain.wrap(span.from, span.to, QStringLiteral("FONT style=\"BACKGROUND-COLOR: #ffb848\""));
        });
    }
}

void Episode::select()
{
    plain.anchor = dice.roll(plain.length() + 1);
    plain.focus = dice.roll(3) == 0 ? plain.anchor : dice.roll(plain.length() + 1);
    document.setSelection(place(plain.anchor), place(plain.focus));
    endTyping();
}

void Episode::makeRange()
{
    constexpr std::size_t MostRanges = 8;
    if (ranges.size() == MostRanges) {
        const std::size_t i = anyRange();
        ranges.erase(ranges.begin() + std::ptrdiff_t(i));
        plain.ranges.erase(plain.ranges.begin() + std::ptrdiff_t(i));
        return;
    }
    const int a = dice.roll(plain.length() + 1);
    const int b = std::min(plain.length(), a + dice.roll(12));
    ranges.emplace_back(document, place(a), place(b));
    plain.ranges.push_back({a, b});
}

void Episode::moveRange()
{
    if (ranges.empty())
        return;
    const std::size_t i = anyRange();
    const int count = dice.roll(30) - 15;
    Span& span = plain.ranges[i];
    if (dice.roll(2) == 0) {
        const int target = std::clamp(span.from + count, 0, plain.length());
        EXPECT_EQ(ranges[i].moveStart(u"character", count), target - span.from);
        span = {target, std::max(target, span.to)};
    } else {
        const int target = std::clamp(span.to + count, 0, plain.length());
        EXPECT_EQ(ranges[i].moveEnd(u"character", count), target - span.to);
        span = {std::min(target, span.from), target};
    }
    EXPECT_EQ(RangeLength(ranges[i]), span.to - span.from);
    EXPECT_EQ(ranges[i].text(),
              plain.text().mid(span.from, span.to - span.from).replace(u'\n', QStringLiteral("\r\n")));
}

void Episode::find()
{
    if (ranges.empty())
        return;
    const std::size_t i = anyRange();
    Span& span = plain.ranges[i];
    const QString text = plain.text();
    const int from = dice.roll(plain.length() + 1);
    const QString sought = dice.roll(3) == 0 ? randomText(2, true) : text.mid(from, 1 + dice.roll(4));
    const bool matchCase = dice.roll(2) == 0;
    const bool backwards = dice.roll(2) == 0;
    const auto sensitivity = matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    qsizetype hit = -1;
    if (!sought.isEmpty() && !backwards)
        hit = text.indexOf(sought, span.from, sensitivity);
    else if (!sought.isEmpty() && span.to >= sought.size())
        hit = text.lastIndexOf(sought, span.to - sought.size(), sensitivity);
    const bool found = ranges[i].findText(sought, backwards ? -1 : 1, matchCase ? TextRange::MatchCase : 0);
    EXPECT_EQ(found, hit >= 0) << sought.toStdString();
    if (hit >= 0)
        span = {int(hit), int(hit + sought.size())};
}

bool Episode::undo()
{
    EXPECT_EQ(document.undo(), done > 0);
    if (done == 0)
        return false;
    const Step& step = steps[--done];
    plain.tokens = step.before;
    // NOLINTNEXTLINE(modernize-loop-convert): clang 14 cannot read views::reverse of this library.
    for (auto change = step.edits.rbegin(); change != step.edits.rend(); ++change)
        plain.movePlaces(change->from, change->newEnd, change->oldEnd);
    plain.fitPlaces();
    plain.anchor = step.selectionBefore.from;
    plain.focus = step.selectionBefore.to;
    endTyping();
    return true;
}

bool Episode::redo()
{
    EXPECT_EQ(document.redo(), done < steps.size());
    if (done == steps.size())
        return false;
    const Step& step = steps[done++];
    plain.tokens = step.after;
    for (const PlainDocument::Edit& change : step.edits)
        plain.movePlaces(change.from, change.oldEnd, change.newEnd, change.inFront);
    plain.fitPlaces();
    plain.anchor = step.selectionAfter.from;
    plain.focus = step.selectionAfter.to;
    endTyping();
    return true;
}

void Episode::step()
{
    // Long text makes the comparison slow without testing more.
    constexpr int MostText = 300;
    if (plain.length() > MostText) {
        document.setSelection({}, document.end());
        document.deleteSelection();
        endTyping();
        putCaret(0);
        plain.focus = plain.length();
        edit([&] { putCaret(plain.erase(0, plain.length())); });
    }
    using Operation = void (Episode::*)();
    constexpr Operation Operations[]
        = {&Episode::typeText,   &Episode::typeText,    &Episode::typeText,    &Episode::pressKey,
           &Episode::pressKey,   &Episode::setText,     &Episode::setText,     &Episode::pasteInline,
           &Episode::pasteLines, &Episode::insertLines, &Episode::replaceLine, &Episode::paint,
           &Episode::select,     &Episode::makeRange,   &Episode::moveRange,   &Episode::moveRange,
           &Episode::find,       &Episode::find};
    const int choice = dice.roll(int(std::size(Operations)) + 3);
    if (choice < int(std::size(Operations)))
        (this->*Operations[choice])();
    else if (choice == int(std::size(Operations)))
        redo();
    else
        undo();
    agree("operation");
}

// ---------------------------------------------------------------- comparing

void Episode::agree(const char* what)
{
    QString html;
    for (int i = 0; i < document.lineCount(); ++i) {
        if (i > 0)
            html += u"\r\n";
        html += page::item(document, i + 1).outerHTML();
    }
    ASSERT_EQ(html.toStdString(), plain.html().toStdString()) << what;
    ASSERT_EQ(page::innerText(document), plain.text().replace(u'\n', QStringLiteral("\r\n")));
    ASSERT_EQ(index(document.selection().anchor), plain.anchor) << what;
    ASSERT_EQ(index(document.selection().focus), plain.focus) << what;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        ASSERT_EQ(index(ranges[i].start()), plain.ranges[i].from) << what << ", range " << i;
        ASSERT_EQ(index(ranges[i].end()), plain.ranges[i].to) << what << ", range " << i;
    }
}

void Episode::undoAndRedoAll()
{
    while (redo() && !failed())
        agree("redo");
    const Tokens last = plain.tokens;
    while (undo() && !failed())
        agree("undo");
    EXPECT_EQ(plain.tokens, first.tokens);
    agree("first document");
    while (redo() && !failed())
        agree("redo");
    EXPECT_EQ(plain.tokens, last);
}

} // namespace

TEST(DocumentModel, AgreesWithThePlainDocumentAfterEveryOperation)
{
    constexpr int Episodes = 250;
    constexpr int StepsPerEpisode = 420;
    for (int seed = 1; seed <= Episodes; ++seed) {
        SCOPED_TRACE(testing::Message() << "episode " << seed);
        Episode episode{std::uint64_t(seed)};
        for (int i = 0; i < StepsPerEpisode && !episode.failed(); ++i) {
            SCOPED_TRACE(testing::Message() << "step " << i);
            episode.step();
        }
        if (!episode.failed())
            episode.undoAndRedoAll();
        if (episode.failed())
            return;
    }
}

} // namespace vmk
