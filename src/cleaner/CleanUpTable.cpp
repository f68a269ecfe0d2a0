#include "CleanUpTable.h"

#include "CodePages.h"
#include "FileOperations.h"
#include "FileSignatures.h"
#include "SettingsVariables.h"

#include <QStringView>
#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr char16_t LineEnd = u'\r';
constexpr qsizetype HeaderLines = 3;
constexpr qsizetype LinesPerRow = 5;

void AppendLine(QString& text, QString value)
{
    text += value.replace(QChar(LineEnd), u' ');
    text += QChar(LineEnd);
}

QString Flag(bool set)
{
    return set ? u"1"_s : u"0"_s;
}

/// Splits a text after each `LineEnd`. A last line without a line end counts as a line.
QList<QStringView> LinesOf(QStringView text)
{
    QList<QStringView> lines = text.split(QChar(LineEnd));
    if (lines.back().isEmpty())
        lines.removeLast();
    return lines;
}

/// Returns the decimal number at the beginning of a line; 0 if there is none or it is negative.
qsizetype LeadingNumber(QStringView line)
{
    constexpr qsizetype Limit = 1'000'000'000;
    qsizetype number = 0;
    for (const QChar c : line.trimmed()) {
        if (c < u'0' || c > u'9')
            break;
        number = std::min(number * 10 + (c.unicode() - u'0'), Limit);
    }
    return number;
}

QString TextOfUtf16(std::string_view bytes)
{
    QString text(qsizetype(bytes.size() / 2), Qt::Uninitialized);
    qFromLittleEndian<char16_t>(bytes.data(), text.size(), text.data());
    return text;
}

std::string Utf16OfText(const QString& text)
{
    std::string bytes(size_t(text.size()) * 2, '\0');
    qToLittleEndian<char16_t>(text.constData(), text.size(), bytes.data());
    return bytes;
}

} // namespace

const QStringList& CleanUpScopes()
{
    static const QStringList scopes
        = {u"whole book"_s, u"selected fragment"_s, u"from cursor down"_s, u"from cursor up"_s};
    return scopes;
}

QString CleanUpSignature()
{
    return DecodeBytes(CleanUpFileSignature, CodePageSystem);
}

std::string CleanUpFileBytes(const CleanUpTable& table)
{
    QString text;
    AppendLine(text, CleanUpSignature());
    AppendLine(text, table.CleanWhere);
    AppendLine(text, QString::number(table.rows.size()));
    for (const CleanUpRow& row : table.rows) {
        AppendLine(text, row.RepWhat);
        AppendLine(text, row.RepBy);
        AppendLine(text, Flag(row.Case));
        AppendLine(text, Flag(row.RegExp));
        AppendLine(text, Flag(row.Enabled));
    }
    return Utf16OfText(text);
}

std::optional<CleanUpTable> CleanUpTableOfBytes(std::string_view bytes)
{
    const QString text = TextOfUtf16(bytes);
    const QList<QStringView> lines = LinesOf(text);
    const auto line
        = [&lines](qsizetype index) { return index < lines.size() ? lines[index] : QStringView(); };
    if (line(0) != CleanUpSignature())
        return std::nullopt;

    CleanUpTable table;
    table.CleanWhere = line(1).toString();
    const qsizetype begun
        = std::max<qsizetype>(lines.size() - HeaderLines + LinesPerRow - 1, 0) / LinesPerRow;
    const qsizetype count = std::min(LeadingNumber(line(2)), begun);
    table.rows.reserve(size_t(count));
    for (qsizetype at = HeaderLines; at < HeaderLines + count * LinesPerRow; at += LinesPerRow) {
        table.rows.push_back({.RepWhat = line(at).toString(),
                              .RepBy = line(at + 1).toString(),
                              .Case = line(at + 2) == u'1',
                              .RegExp = line(at + 3) == u'1',
                              .Enabled = line(at + 4) == u'1'});
    }
    return table;
}

QString CleanWhereData;

void ReadCleanWhereData()
{
    CleanWhereData = u"-1"_s;
    if (!FileExists(CurrentCleanUpFile))
        return;
    const std::string bytes = ReadFileText(CurrentCleanUpFile);
    const std::string_view line = std::string_view(bytes).substr(0, bytes.find_first_of("\r\n"));
    CleanWhereData
        = line == "0" || line == "2" ? QString::fromLatin1(line.data(), qsizetype(line.size())) : u"1"_s;
}

} // namespace vmk
