#pragma once

#include "CleanUpEngine.h"

#include <QAbstractTableModel>

#include <vector>

namespace vmk {

/// The columns of the table, from the left.
enum CleanUpColumn : int
{
    RepWhatColumn,
    RepByColumn,
    CaseColumn,
    RegExpColumn,
    EnabledColumn,
    CleanUpColumnCount
};

/// The rows of a clean-up table as an editable model. After a run the row headers show the number of
/// replacements, and the expressions that are not valid are marked.
///
/// Every change of the user can be taken back by `Undo`, a whole one at a time.
class CleanUpModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] const std::vector<CleanUpRow>& Rows() const { return rows; }
    /// Puts other rows in place of all; nothing is left to undo.
    void SetRows(std::vector<CleanUpRow> newRows);
    /// Whether the rows differ from those of the last `SetRows` or `MarkSaved`.
    [[nodiscard]] bool IsModified() const { return rows != saved; }
    void MarkSaved() { saved = rows; }

    /// \param before  row from 0; the number of rows appends
    void InsertRows(int before, const std::vector<CleanUpRow>& inserted);
    void RemoveRows(int first, int count);
    void RemoveAllRows();
    void SetAllEnabled(bool enabled);
    /// Takes the last change back. \return false when there is none.
    bool Undo();

    /// Shows what a run did, until the next change.
    void ShowRun(const CleanUpRun& run);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

Q_SIGNALS:
    /// The user has changed the rows.
    void edited();

private:
    void keepForUndo();
    void forgetRun();
    [[nodiscard]] QString resultText(int row) const;

    std::vector<CleanUpRow> rows;
    std::vector<CleanUpRow> saved;
    std::vector<std::vector<CleanUpRow>> past; ///< The rows before each change, the oldest first.
    std::vector<CleanUpRowResult> results; ///< Of the last run; empty after a change.
};

/// Rows as text for the clipboard: a line each, its fields separated by tabs, quoted as spreadsheets do.
[[nodiscard]] QString TextOfRows(const std::vector<CleanUpRow>& rows);
/// The reverse. A line of one field is no row.
/// \return nothing if a line is no row.
[[nodiscard]] std::vector<CleanUpRow> RowsOfText(const QString& text);

} // namespace vmk
