#include "CaretTag.h"

#include "BinaryElements.h"
#include "DisplayPage.h"
#include "MainWindowSeams.h"
#include "Sounds.h"
#include "TagFunctions.h"
#include "TextFunctions.h"

#include <QStringList>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QString Attribute(const QString& tag, const char* name)
{
    return QString::fromStdString(GetXmlAttribute(tag.toStdString(), name, false));
}

QString IdText(const QString& id)
{
    return "id=\""_L1 + id + u'"';
}

void Report(const QString& text, bool good, bool beepInstead)
{
    ShowStatus(text);
    PlayProgramSound(good ? "NoParseError.wav"_L1 : "ParseError.wav"_L1, beepInstead);
}

} // namespace

CaretTag GetTagUnderCaret(DisplayDocument& document)
{
    const std::optional<TextRange> tag = TagAround(page::createRange(document));
    return tag ? ParseTagAttributes(tag->text()) : CaretTag();
}

CaretTag ParseTagAttributes(const QString& tag)
{
    QString bare = tag;
    bare.remove(u'<').remove(u'>');
    return {tag, Attribute(tag, "href"), Attribute(tag, "id"), bare.split(u' ').constFirst().trimmed()};
}

TagEntries EntriesFor(const CaretTag& tag, std::string_view binaryPart, int32_t codePage)
{
    TagEntries entries;
    if (!tag.hasTarget())
        return entries;
    if (tag.isImage()) {
        const std::string id = "id=\"" + IdInBinaryPart(tag.href, codePage);
        const bool known = FindText(binaryPart, id, 0, true) != std::string_view::npos;
        entries.showImage = entries.removeImageResource = known;
        entries.addImageResource = !known;
    }
    entries.goToLink = tag.isLink();
    entries.checkId = !tag.id.isEmpty();
    return entries;
}

void GoToBookmark(DisplayDocument& document, const CaretTag& tag)
{
    const QString sought = IdText(tag.href);
    TextRange range = page::createTextRange(document);
    const bool found = range.findText(sought);
    if (found)
        range.select();
    Report((found ? "found: "_L1 : "not found: "_L1) + sought, found, !found);
    ShowStatusPanel(1, QString());
}

void CheckId(DisplayDocument& document, const CaretTag& tag)
{
    if (tag.id.trimmed().isEmpty())
        return;
    const QString sought = IdText(tag.id);
    TextRange range = page::createTextRange(document);
    bool twice = false;
    if (range.findText(sought)) {
        // The search continues inside the first occurrence, to find a second one after it.
        range.moveEnd(TextUnit::Textedit);
        range.moveStart(TextUnit::Character, 4);
        twice = range.findText(sought);
    }
    // With sounds off, only the text reports a second one, without a beep, which is intended.
    Report((twice ? "id already exists: "_L1 : "id is OK: "_L1) + sought, !twice, false);
}

} // namespace vmk
