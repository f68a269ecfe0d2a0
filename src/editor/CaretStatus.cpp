#include "CaretStatus.h"

#include "BookVariables.h"
#include "CodePages.h"
#include "Files.h"
#include "MainDisplay.h"
#include "MainWindowSeams.h"
#include "SelectionFunctions.h"
#include "SettingsVariables.h"
#include "TextFunctions.h"

#include <cmath>
#include <optional>

namespace vmk {

namespace {

using namespace Qt::StringLiterals;

constexpr int CaretPanel = 2;
constexpr int FileLengthPanel = 3;

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
    const int row = MainDisplay().clientRects(caret, caret).front().top();
    int low = 0;
    int high = caret.offset;
    while (low < high) {
        const int middle = (low + high) / 2;
        if (MainDisplay().clientRects({caret.line, middle}, caret).front().top() == row)
            high = middle;
        else
            low = middle + 1;
    }
    return caret.offset - low + 1;
}

} // namespace

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
    text += u"ln:%1, col:%2"_s.arg(MainDisplay().rowNumber(caret)).arg(ColumnOf(caret));
    if (!codes.ansi.isEmpty())
        text += u", ansi:%1, unicode:%2"_s.arg(codes.ansi, codes.unicode);
    ShowStatusPanel(CaretPanel, text);
}

void ShowFileLength()
{
    ShowStatusPanel(FileLengthPanel, u"file len:"_s + GroupDigits(SizeOfFile(CurrentBook)));
}

} // namespace vmk
