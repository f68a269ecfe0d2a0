#include "EditReference.h"
#include "Monkey.h"
#include "SelectionFunctions.h"
#include "SettingsVariables.h"

#include <QRegularExpression>

/// Keys, clicks, pastes and commands of the monkey.
namespace vmk {

using namespace Qt::StringLiterals;
using test::LineBreak;
using test::Place;
using test::With;

namespace {

constexpr QStringView PairSign = u"\U0001d53b";

QString WithoutBlanks(QString text)
{
    static const QRegularExpression blanks(u"[\\s\\x{a0}\\x{7f}]+"_s);
    return text.remove(blanks);
}

/// The lines under the selection as the plain oracle paints them: it may end a comment at a "<".
QString Repainted(const Place& place)
{
    const int first = place.start().line;
    const bool atBreak = !place.caret() && place.end().offset == 0;
    const int last = place.end().line - (atBreak ? 1 : 0);
    QStringList html;
    for (int line = first; line <= last; ++line)
        html.append(place.lines[line].toHtmlEscaped().replace("&quot;"_L1, "\""_L1));
    const reference::PaintRequest request{TagHighlighting == 1, TagFontWeight.toStdString(),
                                          DisplayFontWeight.toStdString()};
    static const QRegularExpression tags(u"<[^>]*>"_s);
    QString text = QString::fromStdString(reference::PaintLines(html.join(LineBreak).toStdString(), request));
    text.remove(tags).replace("&lt;"_L1, "<"_L1).replace("&gt;"_L1, ">"_L1).replace("&amp;"_L1, "&"_L1);
    return (place.lines.mid(0, first) + text.split(LineBreak) + place.lines.mid(last + 1)).join(LineBreak);
}

} // namespace

void Monkey::AddTyping()
{
    Add("type", 60, [this](const Place& place) {
        static const QStringList signs{
            u"a"_s,  u"Z"_s, u"7"_s, u"<"_s, u">"_s,      u"/"_s, u"&"_s,
            u"\""_s, u"-"_s, u"!"_s, u"="_s, u"\u0436"_s, u"'"_s, PairSign.toString()};
        const QString& sign = OneOf(signs);
        TypeSign(sign);
        return Outcome{With(place, sign)};
    });
    AddEdit(
        "space", 8, [this] { Key(Qt::Key_Space); }, test::WithSpace);
    AddEdit(
        "nbsp", 3, [this] { CtrlKey(Qt::Key_Space); },
        [](const Place& p) { return With(p, QString(QChar(test::Marker))); });
    AddEdit(
        "enter", 6, [this] { Key(Qt::Key_Return); },
        [](const Place& p) { return With(p, QString(LineBreak)); });
    AddEdit(
        "backspace", 12, [this] { Key(Qt::Key_Backspace); },
        [](const Place& p) {
            const qsizetype length = std::min<qsizetype>(p.left.size(), p.left.endsWith(PairSign) ? 2 : 1);
            return p.caret() ? p.left.chopped(length) + p.right : test::Deleted(p);
        });
    AddEdit(
        "delete", 6, [this] { Key(Qt::Key_Delete); },
        [](const Place& p) {
            return p.caret() ? p.left + p.right.mid(p.right.startsWith(PairSign) ? 2 : 1) : test::Deleted(p);
        });
    Add("undo", 14, [this](const Place&) {
        Undo();
        return Outcome{{}, Outcome::FromBefore};
    });
    Add("redo", 7, [this](const Place&) {
        for (int undos = Below(3); undos > 0; --undos)
            Undo();
        CtrlKey(Qt::Key_Y);
        return Outcome{{}, Outcome::FromBefore};
    });
}

void Monkey::AddMoves()
{
    QWidget* page = View().viewport();
    AddQuiet("move", 30, [this] {
        static constexpr std::array Keys{Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,     Qt::Key_Down,
                                         Qt::Key_Home, Qt::Key_End,   Qt::Key_PageUp, Qt::Key_PageDown};
        static constexpr std::array<Qt::KeyboardModifiers, 4> Held{
            Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::ShiftModifier | Qt::ControlModifier};
        Key(OneOf(Keys), OneOf(Held));
    });
    AddQuiet("select all", 1, [this] { CtrlKey(Qt::Key_A); });
    AddQuiet("select", 20, [this] { SelectAnything(); });
    AddQuiet("click", 6, [=, this] { QTest::mouseClick(page, Qt::LeftButton, {}, AnyPoint()); });
    AddQuiet("shift-click", 3,
             [=, this] { QTest::mouseClick(page, Qt::LeftButton, Qt::ShiftModifier, AnyPoint()); });
    AddQuiet("double click", 2, [=, this] {
        const QPoint point = AnyPoint();
        QTest::mouseDClick(page, Qt::LeftButton, {}, point);
        QTest::mouseRelease(page, Qt::LeftButton, {}, point);
    });
    AddQuiet("press noted", 4, [] {
        StoreOffsets();
        StoreMouseDownRange();
    });
    AddQuiet("timers", 1, [] { QTest::qWait(15); });
    AddQuiet("scroll", 3, [this] { View().scroll(0, Below(View().scrollHeight())); });
    AddQuiet("resize", 1, [this] { form->resize(700 + Below(500), 400 + Below(300)); });
}

void Monkey::AddPastes()
{
    struct Clipboard
    {
        QString html;
        QStringList lines;
    };
    static const std::array texts{
        Clipboard{u"two  words &lt;b&gt;"_s, {u"two words <b>"_s}},
        Clipboard{u"plain\r\ntext \U0001d53b of\nlines"_s, {u"plain text \U0001d53b of lines"_s}},
        Clipboard{u"<DIV class=x>one <SPAN class=t>&lt;p&gt;</SPAN></DIV>\r\n<DIV>two</DIV>"_s,
                  {u"one <p>"_s, u"two"_s}},
        Clipboard{u"<P class=Normal>a &amp;amp; b</P>"_s, {u"a &amp; b"_s}}};
    const auto outcome = [](const Place& place, const QString& html, const QStringList& lines, bool bare) {
        const bool inLine = !html.contains("<DIV"_L1);
        const QString text = inLine ? With(place, lines.join(LineBreak))
            : bare                  ? test::Unchanged(place)
                                    : test::WithLines(place, lines, false);
        return Outcome{text, Outcome::ButForBlanks};
    };

    Add("paste", 4, [this, outcome](const Place& place) {
        const Clipboard& text = OneOf(texts);
        copied.clear();
        SetClipboardText(text.html);
        const bool bare = IsBare();
        CtrlKey(Qt::Key_V);
        return outcome(place, text.html, text.lines, bare);
    });
    Add("paste as html", 3, [this](const Place& place) {
        const Clipboard& text = OneOf(texts);
        copied.clear();
        SetClipboardText(text.html);
        const bool bare = IsBare();
        CtrlKey(Qt::Key_H);
        return Outcome{bare ? test::Unchanged(place) : test::WithLines(place, text.lines, true),
                       Outcome::ButForBlanks};
    });
    Add("paste a copy", 6, [this, outcome](const Place& place) {
        if (WithoutBlanks(copied.join(LineBreak)).isEmpty())
            return Outcome{test::Unchanged(place)};
        const bool bare = IsBare();
        Key(Qt::Key_Insert, Qt::ShiftModifier);
        return outcome(place, ClipboardText(), copied, bare);
    });
    AddQuiet("copy", 4, [this] {
        copied = SelectedText().split(u"\r\n"_s);
        CtrlKey(Qt::Key_C);
    });
    AddEdit(
        "cut", 2,
        [this] {
            copied = SelectedText().split(u"\r\n"_s);
            CtrlKey(Qt::Key_X);
        },
        test::Deleted);
    AddQuiet("copy as text", 1, [this] {
        copied.clear();
        CtrlKey(Qt::Key_T);
    });
}

void Monkey::AddCommands()
{
    const auto run = [this](Command command) { return [this, command] { form->RunCommand(command); }; };
    const auto tagged = [](const QString& tag) {
        return [tag](const Place& p) { return test::Around(p, u'<' + tag + u'>', "</"_L1 + tag + u'>'); };
    };
    AddEdit(
        "bold", 2, [this] { CtrlKey(Qt::Key_B); }, tagged(u"strong"_s));
    AddEdit(
        "italic", 2, [this] { CtrlKey(Qt::Key_I); }, tagged(u"emphasis"_s));
    AddEdit("superscript", 1, run(Command::Superscript), tagged(u"sup"_s));
    AddEdit("subscript", 1, run(Command::Subscript), tagged(u"sub"_s));
    AddEdit("lower case", 1, run(Command::LowerCase),
            [](const Place& p) { return With(p, p.selected.toLower()); });
    AddEdit("upper case", 1, run(Command::UpperCase),
            [](const Place& p) { return With(p, p.selected.toUpper()); });
    AddEdit("proper case", 1, run(Command::ProperCase),
            [](const Place& p) { return With(p, test::ProperOf(p.selected)); });
    AddEdit("delete by menu", 2, run(Command::Delete), test::Deleted);

    AddQuiet("right shift", 6, [this] { RunInTwoSteps([this] { Key(Qt::Key_Tab); }); });
    AddQuiet("left shift", 6, [this] { RunInTwoSteps([this] { CtrlKey(Qt::Key_Tab); }); });
    Add("repaint", 12, [this](const Place& place) {
        // The oracle takes long; without comments nothing but the colours changes.
        constexpr int ManyLines = 100;
        const bool isLong = place.end().line - place.start().line > ManyLines;
        const bool hasComment = isLong && place.selected.contains("<!--"_L1);
        const QString text = IsBare() || isLong ? test::Unchanged(place) : Repainted(place);
        RunInTwoSteps([this] { Key(Qt::Key_Escape); });
        return Outcome{text, hasComment ? Outcome::Anything : Outcome::Exactly};
    });
    AddQuiet("field", 3, [this] {
        static constexpr std::array Fields{Command::InsertTextField, Command::InsertTagField,
                                           Command::InsertTagAttributeValueField};
        // The layout decides whether a selection of line breaks is visible.
        if (!CurrentPlace().lineBreaksOnly())
            RunInTwoSteps([this] { form->RunCommand(OneOf(Fields)); });
    });
    AddQuiet("position", 2,
             [this] { form->RunCommand(Below(2) == 0 ? Command::PreviousPosition : Command::NextPosition); });
    AddQuiet("context menu", 2, [this] {
        form->ShowPopUpMenu();
        form->MnRightClick->close();
        form->RunCommand(Below(2) == 0 ? Command::GoToLink : Command::CheckId);
    });
    AddQuiet("validate", 1, [this] { Key(Qt::Key_F8); });
    AddQuiet("save", 1, [this] { CheckFile(); });
}

} // namespace vmk
