#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

/// The colours of the palette, their file, and the geometry of the cells.
namespace vmk {

/// Entries of the default table; the file is created with all of them.
inline constexpr int DefaultColorCount = 224;
/// Cells of the palette; also the number of lines that are read from the file.
inline constexpr int ColorCellCount = 204;
inline constexpr int ColorCellPixels = 14;
inline constexpr int ColorCellsInRow = 12;
inline constexpr int ColorCellRows = ColorCellCount / ColorCellsInRow;

/// Red, green and blue, a byte each, red highest.
using ColorValue = uint32_t;

/// Returns the colour of the last six characters, three pairs of hexadecimal digits with red first; nothing
/// if they are not hexadecimal digits.
[[nodiscard]] std::optional<ColorValue> ColorFromHtml(QStringView text);

/// Returns the colour as "#RRGGBB", in capitals.
[[nodiscard]] QString HtmlOfColor(ColorValue color);

/// Returns the path of `ColorTable.dat` in the workspace.
[[nodiscard]] QString ColorTableFile();

/// Returns the content of a new file: a line "#RRGGBB" for each entry, ended by `CrLf`.
[[nodiscard]] std::string DefaultColorTable();

/// The colours of the cells.
class ColorTable
{
public:
    /// Creates the file with the default table if it is missing, and reads it. A line that is missing, or
    /// holds no colour, leaves its cell with the colour that the cell had last; a cell that had none yet
    /// takes the colour of the cell before it. A failed read or write is not reported.
    void read(const QString& path);

    /// \param cell from 0 to `ColorCellCount - 1`
    [[nodiscard]] ColorValue color(int cell) const { return colors[size_t(cell)]; }

private:
    std::array<std::optional<ColorValue>, ColorCellCount> lines{};
    std::array<ColorValue, ColorCellCount> colors{};
};

/// Returns the rectangle of a cell, in pixels. Cells fill rows of twelve from the top left.
[[nodiscard]] QRect ColorCell(int cell);

/// Returns the cell that contains a point; -1 if there is none.
[[nodiscard]] int ColorCellAt(const QPoint& point);

} // namespace vmk
