#include "ColorTable.h"

#include "FileOperations.h"
#include "Files.h"
#include "LineEnds.h"
#include "StartUpVariables.h"

#include <QFile>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Basic colours and whites, then the named colours of HTML by hue, with shades between them. Yellow and aqua
/// differ by one step from HTML's, by design.
constexpr std::array<const char*, DefaultColorCount> DefaultColors = {
    "#000000", "#FF0000", "#FFA500", "#FFFF01", "#008000", "#00FFFE", "#0000FF", "#EE82EE", "#708090",
    "#DCDCDC", "#FFF5EE", "#FFFFFF", "#FAEBD7", "#FAF0E6", "#FDF5E6", "#FFFAF0", "#FFFFF0", "#F0F8FF",
    "#F0FFFF", "#F8F8FF", "#F0FFF0", "#F5FFFA", "#F5F5F5", "#FFFAFA", "#800000", "#A0522D", "#FF1493",
    "#FF69B4", "#4D1919", "#4D1926", "#570F33", "#57150F", "#8B0000", "#AA0909", "#AA0931", "#AA0959",
    "#AA1609", "#A52A2A", "#B22222", "#C71585", "#DC143C", "#F42525", "#F42559", "#F4258C", "#C65C53",
    "#CD5C5C", "#FF6347", "#DB7093", "#BC8F8F", "#E46767", "#FA8072", "#F08080", "#DF9F9F", "#DF9FAF",
    "#DF9FBF", "#DFA59F", "#FFB6C1", "#FFC0CB", "#FFE4E1", "#FFF0F5", "#8B4513", "#AA4C09", "#AA6709",
    "#AA3909", "#B8860B", "#D2691E", "#DAA520", "#FF8C00", "#FF4500", "#CD853F", "#F47B25", "#FF7F50",
    "#F4A460", "#D2B48C", "#E9967A", "#DEB887", "#FFA07A", "#F5DEB3", "#FFDEAD", "#FFE4B5", "#FFDAB9",
    "#FFE4C4", "#FFEBCD", "#FFEFD5", "#808000", "#AA9C09", "#AA8909", "#FFD700", "#BDB76B", "#F0E68C",
    "#EEE8AA", "#FAFAD2", "#FFFACD", "#F5F5DC", "#FFF8DC", "#FFFFE0", "#006400", "#556B2F", "#228B22",
    "#6B8E23", "#09AA09", "#4CAA09", "#09AA59", "#2E8B57", "#3CB371", "#7CFC00", "#7FFF00", "#00FF00",
    "#32CD32", "#00FF7F", "#9ACD32", "#25F425", "#7BF425", "#25F48C", "#ADFF2F", "#8FBC8F", "#90EE90",
    "#BADF9F", "#86F986", "#98FB98", "#2F4F4F", "#008080", "#008B8B", "#09AAAA", "#00CED1", "#20B2AA",
    "#00FA9A", "#5F9EA0", "#00BFFF", "#48D1CC", "#40E0D0", "#66CDAA", "#ADD8E6", "#B0E0E6", "#AFEEEE",
    "#E0FFFF", "#192A4D", "#19334D", "#19194D", "#000080", "#191970", "#00008B", "#093EAA", "#0959AA",
    "#0909AA", "#0000CD", "#4682B4", "#778899", "#256AF4", "#258CF4", "#2525F4", "#1E90FF", "#4169E1",
    "#7997D2", "#79A6D2", "#6767E4", "#6495ED", "#87CEEB", "#9FBFDF", "#9F9FDF", "#86ACF9", "#87CEFA",
    "#B0C4DE", "#E6E6FA", "#800080", "#4B0082", "#8B008B", "#7409AA", "#AA09AA", "#4409AA", "#483D8B",
    "#663399", "#9400D3", "#9932CC", "#FF00FF", "#8A2BE2", "#AF25F4", "#F425F4", "#7125F4", "#6A5ACD",
    "#BA55D3", "#DA70D6", "#9370DB", "#7B68EE", "#DDA0DD", "#DF9FDF", "#D286F9", "#D8BFD8", "#0E0E0E",
    "#1C1C1C", "#2A2A2A", "#393939", "#474747", "#555555", "#636363", "#696969", "#717171", "#808080",
    "#8E8E8E", "#9C9C9C", "#A9A9A9", "#AAAAAA", "#C0C0C0", "#D3D3D3", "#EDB6B6", "#EDC6B6", "#EDD7B6",
    "#EDE7B6", "#E2EDB6", "#D1EDB6", "#C1EDB6", "#B6EDBB", "#B6EDCC", "#B6EDDC", "#B6EDED", "#B6DCED",
    "#B6CCED", "#B6BBED", "#C1B6ED", "#D1B6ED", "#E2B6ED", "#EDB6E7", "#EDB6D7", "#EDB6C6",
};

/// Larger than any valid table; limits the cost of a malicious file.
constexpr qint64 MostBytes = 65'536;

QList<QByteArray> LinesOf(const QString& path)
{
    QFile file(path);
    // Reading from a pipe or a device can block.
    if (KindOfFile(path) != FileKind::File || !file.open(QIODevice::ReadOnly))
        return {};
    return file.read(MostBytes).split('\n');
}

} // namespace

std::optional<ColorValue> ColorFromHtml(QStringView text)
{
    constexpr qsizetype Digits = 6;
    constexpr int Hexadecimal = 16;
    const QStringView digits = text.right(Digits);
    const bool allDigits
        = digits.size() == Digits && std::ranges::all_of(digits, [](QChar c) {
              return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
          });
    if (!allDigits)
        return std::nullopt;
    return digits.toUInt(nullptr, Hexadecimal);
}

QString HtmlOfColor(ColorValue color)
{
    return u'#' + QString::number(color, 16).toUpper().rightJustified(6, u'0');
}

QString ColorTableFile()
{
    return OfficeFolder + u"/ColorTable.dat"_s;
}

std::string DefaultColorTable()
{
    std::string text;
    for (const char* color : DefaultColors)
        text.append(color).append(CrLf);
    return text;
}

void ColorTable::read(const QString& path)
{
    // If the workspace is not writable, the cells keep their colours.
    if (!FileExists(path))
        static_cast<void>(WriteFileText(path, DefaultColorTable()));
    const QList<QByteArray> text = LinesOf(path);
    ColorValue last = 0;
    for (size_t cell = 0; cell < lines.size(); ++cell) {
        const QString line = QString::fromLatin1(text.value(qsizetype(cell))).trimmed();
        if (const std::optional<ColorValue> color = ColorFromHtml(line))
            lines[cell] = color;
        last = lines[cell].value_or(last);
        colors[cell] = last;
    }
}

QRect ColorCell(int cell)
{
    const int row = cell / ColorCellsInRow;
    const int column = cell % ColorCellsInRow;
    return {column * ColorCellPixels, row * ColorCellPixels, ColorCellPixels, ColorCellPixels};
}

int ColorCellAt(const QPoint& point)
{
    for (int cell = 0; cell < ColorCellCount; ++cell) {
        if (ColorCell(cell).contains(point))
            return cell;
    }
    return -1;
}

} // namespace vmk
