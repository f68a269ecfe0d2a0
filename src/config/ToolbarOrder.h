#pragma once

#include <QString>
#include <QStringView>

#include <optional>
#include <vector>

/// The order of the toolbar's buttons.
namespace vmk {

/// Represents a separator in an order. The buttons of the design have the numbers from 1.
inline constexpr int SeparatorIndex = 0;

/// The toolbar's buttons from left to right: indexes of the design, and `SeparatorIndex`.
using ToolbarOrder = std::vector<int>;

/// Returns the order as it is stored: decimal numbers separated by commas, without a trailing comma.
[[nodiscard]] QString FormatOrder(const ToolbarOrder& order);

/// Reads a stored order.
/// \param text         the stored text; untrusted input
/// \param designCount  buttons in the design; higher and negative indexes are skipped, and so is a button
/// that
///                     is already in the order
/// \return nothing if the text is not a list of numbers, is longer than any order that the program writes, or
///         contains no button
[[nodiscard]] std::optional<ToolbarOrder> ParseOrder(QStringView text, int designCount);

/// The two lists of the customising dialog.
struct ToolbarLists
{
    /// The separator, then the buttons that the toolbar does not show, in the design's order.
    ToolbarOrder available;
    /// The toolbar's buttons.
    ToolbarOrder shown;

    friend bool operator==(const ToolbarLists&, const ToolbarLists&) = default;
};

/// Returns the lists for a toolbar that shows `shown` of a design of `designCount` buttons.
[[nodiscard]] ToolbarLists MakeLists(const ToolbarOrder& shown, int designCount);

/// Moves a row of `available` into `shown`, before the row `before`, or to the end if there is no such row.
/// The separator remains available.
/// \return the new row in `shown`; -1 if there is no such row to add.
int AddButton(ToolbarLists& lists, int availableRow, int before);

/// Moves a row of `shown` back to its design position in `available`; a separator is removed.
/// \return the row of `shown` to select next, -1 if none is left or there is no such row.
int RemoveButton(ToolbarLists& lists, int shownRow);

/// Swaps a row of `shown` with its neighbour: `step` is -1 for up and 1 for down.
/// \return the row's new position; -1 if there is no such row or no neighbour.
int MoveButton(ToolbarLists& lists, int shownRow, int step);

} // namespace vmk
