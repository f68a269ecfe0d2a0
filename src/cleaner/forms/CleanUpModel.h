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
/// replacements, and invalid expressions are marked.
///
/// `Undo` reverts the changes of the user one by one.
class CleanUpModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] const std::vector<CleanUpRow>& Rows() const { return rows; }
    /// Replaces all rows and clears the undo history.
    void SetRows(std::vector<CleanUpRow> newRows);
    /// Returns true if the rows differ from those of the last `SetRows` or `MarkSaved`.
    [[nodiscard]] bool IsModified() const { return rows != saved; }
    void MarkSaved() { saved = rows; }

    /// \param before  from 0; the number of rows to append
    void InsertRows(int before, const std::vector<CleanUpRow>& inserted);
    void RemoveRows(int first, int count);
    void RemoveAllRows();
    void SetAllEnabled(bool enabled);
    /// Reverts the last change. \return false if there is none
    bool Undo();

    /// Shows the outcome of a run until the next change.
    void ShowRun(const CleanUpRun& run);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

Q_SIGNALS:
    /// The user changed the rows.
    void edited();

private:
    void keepForUndo();
    void forgetRun();
    [[nodiscard]] QString resultText(int row) const;

    std::vector<CleanUpRow> rows;
    std::vector<CleanUpRow> saved;
    std::vector<std::vector<CleanUpRow>> past; ///< The rows before each change, oldest first.
    std::vector<CleanUpRowResult> results; ///< Of the last run; empty after a change.
};

/// Returns rows as text for the clipboard: one line per row, with fields separated by tabs and quoted as in
/// spreadsheets.
[[nodiscard]] QString TextOfRows(const std::vector<CleanUpRow>& rows);
/// Reverses `TextOfRows`.
/// \return nothing if the text is empty or a line has fewer than two fields
[[nodiscard]] std::vector<CleanUpRow> RowsOfText(const QString& text);

} // namespace vmk
