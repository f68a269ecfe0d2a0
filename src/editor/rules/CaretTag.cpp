#include "CaretTag.h"

#include "DisplayPage.h"
#include "MainWindowSeams.h"
#include "Sounds.h"
#include "TagFunctions.h"

#include <QStringList>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// How far a tag's angle brackets are looked for, in characters to either side.
constexpr int ScanLimit = 50;

/// Moves one end of a range outwards up to a bracket. False when the other bracket comes first, or none.
bool ReachLeft(TextRange& range)
{
    range.collapse(true);
    if (range.moveStart(u"character", -1) == 0)
        return false;
    for (int steps = 0; steps <= ScanLimit; ++steps) {
        const QString character = range.text();
        if (character == u"<")
            return true;
        if (character == u">" || range.moveStart(u"character", -1) == 0)
            return false;
        range.moveEnd(u"character", -1);
    }
    return false;
}

bool ReachRight(TextRange& range)
{
    range.collapse(false);
    if (range.moveEnd(u"character", 1) == 0)
        return false;
    for (int steps = 0; steps <= ScanLimit; ++steps) {
        const QString character = range.text();
        if (character == u">")
            return true;
        if (character == u"<" || range.moveEnd(u"character", 1) == 0)
            return false;
        range.moveStart(u"character", 1);
    }
    return false;
}

QString Attribute(const QString& tag, const char* name)
{
    return QString::fromStdString(GetXmlAttribute(tag.toStdString(), name, false));
}

QString IdText(const QString& id)
{
    return "id=\""_L1 + id + u'"';
}

void Report(const QString& text, bool good)
{
    ShowStatus(text);
    PlayProgramSound(good ? "NoParseError.wav"_L1 : "ParseError.wav"_L1, !good);
}

} // namespace

std::optional<TextRange> TagAround(const TextRange& range)
{
    TextRange left = range.duplicate();
    TextRange right = range.duplicate();
    if (!ReachLeft(left) || !ReachRight(right))
        return std::nullopt;
    left.setEndPoint(u"EndToEnd", right);
    return left;
}

CaretTag GetTagUnderCaret(DisplayDocument& document)
{
    const std::optional<TextRange> tag = TagAround(createRange(document));
    return tag ? ParseTagAttributes(tag->text()) : CaretTag();
}

CaretTag ParseTagAttributes(const QString& tag)
{
    QString bare = tag;
    bare.remove(u'<').remove(u'>');
    return {tag, Attribute(tag, "href"), Attribute(tag, "id"), bare.split(u' ').constFirst().trimmed()};
}

void GoToBookmark(DisplayDocument& document, const CaretTag& tag)
{
    const QString sought = IdText(tag.href);
    TextRange range = createTextRange(document);
    const bool found = range.findText(sought);
    if (found)
        range.select();
    Report((found ? "found: "_L1 : "not found: "_L1) + sought, found);
    ShowStatusPanel(1, QString());
}

void CheckId(DisplayDocument& document, const CaretTag& tag)
{
    if (tag.id.trimmed().isEmpty())
        return;
    const QString sought = IdText(tag.id);
    TextRange range = createTextRange(document);
    bool twice = false;
    if (range.findText(sought)) {
        // A second one is looked for behind the first, so the search goes on inside it.
        range.moveEnd(u"textedit");
        range.moveStart(u"character", 4);
        twice = range.findText(sought);
    }
    Report((twice ? "id already exists: "_L1 : "id is OK: "_L1) + sought, !twice);
}

} // namespace vmk
