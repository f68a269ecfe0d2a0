#include "EditorFunctions.h"

#include "BookVariables.h"
#include "CodePages.h"
#include "Desktop.h"
#include "DisplayView.h"
#include "EditorState.h"
#include "FindReplaceWbF.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "SettingsValues.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "TextFunctions.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Does not occur as an id in any book.
constexpr char TemporalMarker[] = "()*^^^%^*";
constexpr int CaretPanel = 2;
constexpr int FileLengthPanel = 3;

DisplayView& View()
{
    return *Form1::Instance()->HTMLread;
}

DisplayDocument& FileDoc()
{
    return View().document();
}

// ---- the status line

struct CharacterCodes
{
    QString ansi;
    QString unicode;
};

CharacterCodes CodesOf(const QString& character)
{
    if (character.isEmpty())
        return {};
    if (character == QChar(u'\x7f') || character == QChar(QChar::Nbsp))
        return {u"160 (nbsp)"_s, u"160 (nbsp)"_s};
    const std::string byte = EncodeText(character.left(1), SystemCodePage());
    // The 16-bit code as a signed number: negative from 32768.
    return {QString::number(byte.empty() ? 0 : uchar(byte[0])),
            QString::number(int16_t(character[0].unicode()))};
}

/// The depth of a line, computed from its margin; nothing if the node shift is 0.
std::optional<long> ShiftOf(int node)
{
    const QString html = page::item(FileDoc(), node).outerHTML();
    const qsizetype found = html.indexOf("MARGIN-LEFT:"_L1, 0, Qt::CaseInsensitive);
    if (found < 0)
        return 0;
    if (NodeShift <= 0)
        return std::nullopt;
    const qsizetype value = found + qsizetype(std::size("MARGIN-LEFT:")) - 1;
    const qsizetype end = html.indexOf("px\""_L1, value);
    const double margin = html.mid(value, end < 0 ? 0 : end - value).trimmed().toDouble();
    // To the nearest whole number, halves to even.
    return std::lrint(margin / NodeShift);
}

/// The 1-based position of the caret in its row, in characters.
int ColumnOf(Position caret)
{
    // The first position from which the text up to the caret is on the caret's row only.
    const int row = View().clientRects(caret, caret).front().top();
    int low = 0;
    int high = caret.offset;
    while (low < high) {
        const int middle = (low + high) / 2;
        if (View().clientRects({caret.line, middle}, caret).front().top() == row)
            high = middle;
        else
            low = middle + 1;
    }
    return caret.offset - low + 1;
}

} // namespace

// ---------------------------------------------------------------- lines and selection

TextRange SelectionRange()
{
    return page::createRange(FileDoc());
}

SelectedNodes SelectNodes(LineSelectionOptions options)
{
    SelectedNodes nodes = SelectNodes(FileDoc(), {.select = true, .returnHtml = options.returnHtml});
    if (nodes.first < 1)
        return nodes;
    if (options.cancelEvent)
        LinesSelected = true;
    LineAnchorRange.reset();
    if (options.keepAnchor)
        LineAnchorRange = nodes.range;
    return nodes;
}

void StoreOffsets()
{
    const TextRange range = SelectionRange();
    CaretOffsetLeft = range.offsetLeft();
    CaretOffsetTop = range.offsetTop();
    SavedScrollLeft = View().scrollLeft();
    SavedScrollTop = View().scrollTop();
}

void StoreMouseDownRange()
{
    MouseDownRange = SelectionRange();
}

bool SelectTagAtCaret()
{
    if (!MouseDownRange)
        return false;
    const std::optional<TextRange> tag = TagAround(*MouseDownRange);
    if (tag)
        tag->select();
    return tag.has_value();
}

bool ShiftClickSelect()
{
    if (!LineAnchorRange)
        return false;
    const int scrollTop = View().scrollTop();
    TripleClickPending = false;
    TextRange range = SelectionRange();
    if (range.compareEndPoints(EndPoints::EndToEnd, *LineAnchorRange) == 1)
        range.setEndPoint(EndPoints::StartToStart, *LineAnchorRange);
    else if (range.compareEndPoints(EndPoints::StartToStart, *LineAnchorRange) == -1)
        range.setEndPoint(EndPoints::EndToEnd, *LineAnchorRange);
    range.select();
    SelectNodes({.keepAnchor = true});
    View().scroll(0, scrollTop);
    LineAnchorRange = SelectionRange();
    LinesSelected = true;
    return true;
}

// ---------------------------------------------------------------- status line

void ShowCaretPosition()
{
    TextRange range = SelectionRange();
    if (range.boundingWidth() > 0) {
        ShowStatusPanel(CaretPanel, QString());
        return;
    }
    const Position caret = range.start();
    range.moveEnd(TextUnit::Character, 1);
    const CharacterCodes codes = CodesOf(range.text());

    QString text;
    const int node = NodeAtRangeStart(SelectionRange());
    if (page::item(FileDoc(), node).nodeName() == "DIV"_L1) {
        if (const std::optional<long> shift = ShiftOf(node))
            text = u"sh:%1, "_s.arg(*shift);
    }
    text += u"ln:%1, col:%2"_s.arg(View().rowNumber(caret)).arg(ColumnOf(caret));
    if (!codes.ansi.isEmpty())
        text += u", ansi:%1, unicode:%2"_s.arg(codes.ansi, codes.unicode);
    ShowStatusPanel(CaretPanel, text);
}

void ShowFileLength()
{
    ShowStatusPanel(FileLengthPanel, u"file len:"_s + GroupDigits(QFileInfo(CurrentBook).size()));
}

// ---------------------------------------------------------------- undo

void UndoEdit()
{
    View().undo(std::max(UndoSteps, 1));
}

void RedoEdit()
{
    View().redo(std::max(UndoSteps, 1));
}

// ---------------------------------------------------------------- positions

void GoToPosition(Direction direction)
{
    DocScrollHeight = View().scrollHeight();
    const std::optional<double> entry = Positions.step(direction);
    if (!entry) {
        Beep();
        return;
    }
    PositionJump = true;
    View().scroll(0, int(std::lrint(*entry * DocScrollHeight)));
}

void RememberPosition(Remember when)
{
    const double height = DocScrollHeight = View().scrollHeight();
    const double top = View().scrollTop();
    const double entry = height > 0 ? top / height : 0;
    if (when == Remember::Restart) {
        SkipPositionRemember = false;
        Positions.reset(entry);
    } else if (when == Remember::Always || !Positions.endsAt(top, height)) {
        Positions.insert(entry);
    }
}

void NoteScrollEnd()
{
    static bool waiting = false;
    if (waiting)
        return;
    if (QGuiApplication::mouseButtons() & Qt::LeftButton) {
        PositionJump = false;
        return;
    }
    if (SkipPositionRemember) {
        SkipPositionRemember = false;
    } else if (!PositionJump) {
        waiting = true;
        WaitForInput(50, nullptr, 0);
        waiting = false;
        if (!Form1::Instance())
            return;
        RememberPosition(Remember::IfMoved);
    }
    Form1::Instance()->TimerScroll->stop();
    PositionJump = false;
}

void SetTemporalBookmark()
{
    // A running replace-all must not find the book changed.
    const FindReplaceWbF* search = FindReplaceWbF::Instance();
    if (View().scrollTop() <= 0 || (search && search->isRunning()))
        return;
    TemporalBookmarkSet = true;
    DeleteTemporalBookmarks();
    TextRange range = SelectionRange();
    range.moveToPoint(LeftMarginPx(), 2);
    range.pasteHTML(u"<A id=%1></A>"_s.arg(QLatin1StringView(TemporalMarker)));
}

void RestoreTemporalBookmark()
{
    GoToAnchor(QString(), QLatin1StringView(TemporalMarker), -1);
    View().focus();
    DeleteTemporalBookmarks();
}

void DeleteTemporalBookmarks()
{
    const QString name = QLatin1StringView(TemporalMarker);
    // Looked up again each time: removing one invalidates the positions of the others.
    for (size_t left = page::getElementsByName(FileDoc(), name).size(); left > 0; --left)
        page::getElementsByName(FileDoc(), name).front().setOuterHTML(QString());
}

void GoToAnchor(const QString& id1, const QString& id2, int fallbackTop)
{
    for (const QString& id : {id1, id2}) {
        if (id.isEmpty())
            continue;
        const std::vector<DisplayElement> found = page::getElementsByName(FileDoc(), id);
        if (!found.empty() && found.front().sourceIndex() >= 1) {
            found.front().scrollIntoView();
            return;
        }
    }
    if (fallbackTop >= 1)
        View().scroll(0, fallbackTop);
}

} // namespace vmk
