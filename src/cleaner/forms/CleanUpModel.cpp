#include "CleanUpModel.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QStyle>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr std::size_t MostUndoSteps = 100;

bool CleanUpRow::*FlagOf(int column)
{
    switch (column) {
    case CaseColumn:
        return &CleanUpRow::Case;
    case RegExpColumn:
        return &CleanUpRow::RegExp;
    case EnabledColumn:
        return &CleanUpRow::Enabled;
    default:
        return nullptr;
    }
}

/// Returns a value on one line: each line end becomes a blank.
QString OneLine(QString value)
{
    return value.replace("\r\n"_L1, " "_L1).replace(u'\r', u' ').replace(u'\n', u' ');
}

QString Quoted(QString field)
{
    const bool isPlain
        = std::ranges::none_of(field, [](QChar c) { return c == u'\t' || c == u'"' || c == u'\n'; });
    return isPlain ? field : u'"' + field.replace(u'"', "\"\""_L1) + u'"';
}

/// Removes one field from the beginning of a text, with the tab or line end after it.
/// \param endsLine  set to true if the field is the last of its line
/// \return the field
QString TakeField(QStringView& text, bool& endsLine)
{
    QString field;
    qsizetype at = 0;
    if (text.startsWith(u'"')) {
        for (at = 1; at < text.size(); ++at) {
            if (text[at] != u'"')
                field += text[at];
            else if (at + 1 < text.size() && text[at + 1] == u'"')
                field += text[at++];
            else
                break;
        }
        at = std::min(at + 1, text.size());
    }
    while (at < text.size() && text[at] != u'\t' && text[at] != u'\n')
        field += text[at++];
    endsLine = at == text.size() || text[at] == u'\n';
    text = text.sliced(std::min(at + 1, text.size()));
    return field;
}

} // namespace

// ---------------------------------------------------------------- changes

void CleanUpModel::SetRows(std::vector<CleanUpRow> newRows)
{
    beginResetModel();
    rows = std::move(newRows);
    saved = rows;
    past.clear();
    results.clear();
    endResetModel();
}

void CleanUpModel::InsertRows(int before, const std::vector<CleanUpRow>& inserted)
{
    if (inserted.empty())
        return;
    keepForUndo();
    before = std::clamp(before, 0, int(rows.size()));
    beginInsertRows({}, before, before + int(inserted.size()) - 1);
    rows.insert(rows.begin() + before, inserted.begin(), inserted.end());
    endInsertRows();
    Q_EMIT edited();
}

void CleanUpModel::RemoveRows(int first, int count)
{
    if (first < 0 || count < 1 || first + count > int(rows.size()))
        return;
    keepForUndo();
    beginRemoveRows({}, first, first + count - 1);
    rows.erase(rows.begin() + first, rows.begin() + first + count);
    endRemoveRows();
    Q_EMIT edited();
}

void CleanUpModel::RemoveAllRows()
{
    RemoveRows(0, int(rows.size()));
}

void CleanUpModel::SetAllEnabled(bool enabled)
{
    if (std::ranges::all_of(rows, [enabled](const CleanUpRow& row) { return row.Enabled == enabled; }))
        return;
    keepForUndo();
    for (CleanUpRow& row : rows)
        row.Enabled = enabled;
    Q_EMIT dataChanged(index(0, EnabledColumn), index(int(rows.size()) - 1, EnabledColumn));
    Q_EMIT edited();
}

bool CleanUpModel::Undo()
{
    if (past.empty())
        return false;
    beginResetModel();
    rows = std::move(past.back());
    past.pop_back();
    results.clear();
    endResetModel();
    Q_EMIT edited();
    return true;
}

void CleanUpModel::keepForUndo()
{
    if (past.size() == MostUndoSteps)
        past.erase(past.begin());
    past.push_back(rows);
    forgetRun();
}

void CleanUpModel::forgetRun()
{
    if (results.empty())
        return;
    results.clear();
    Q_EMIT headerDataChanged(Qt::Vertical, 0, int(rows.size()) - 1);
}

void CleanUpModel::ShowRun(const CleanUpRun& run)
{
    results = run.rows;
    if (rows.empty())
        return;
    Q_EMIT headerDataChanged(Qt::Vertical, 0, int(rows.size()) - 1);
    Q_EMIT dataChanged(index(0, 0), index(int(rows.size()) - 1, CleanUpColumnCount - 1));
}

// ---------------------------------------------------------------- the model

int CleanUpModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(rows.size());
}

int CleanUpModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : CleanUpColumnCount;
}

Qt::ItemFlags CleanUpModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags cell = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return cell | (FlagOf(index.column()) ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

QString CleanUpModel::resultText(int row) const
{
    if (row >= int(results.size()))
        return {};
    const CleanUpRowResult& result = results[std::size_t(row)];
    switch (result.state) {
    case CleanUpRowState::Skipped:
        return u"not used"_s;
    case CleanUpRowState::BadExpression:
        return u"not a valid regular expression: nothing replaced"_s;
    case CleanUpRowState::Stopped:
        return u"stopped, too much work or too much text: nothing replaced"_s;
    case CleanUpRowState::Applied:
        break;
    }
    return u"replacements made: "_s + QString::number(result.replacements);
}

QVariant CleanUpModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(rows.size()))
        return {};
    const CleanUpRow& row = rows[std::size_t(index.row())];
    if (role == Qt::ToolTipRole)
        return resultText(index.row());
    if (role == Qt::AccessibleTextRole) {
        const QString name = headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString();
        return name + u", row "_s + QString::number(index.row() + 1);
    }
    if (bool CleanUpRow::*flag = FlagOf(index.column()))
        return role == Qt::CheckStateRole ? QVariant(row.*flag ? Qt::Checked : Qt::Unchecked) : QVariant();
    const QString& value = index.column() == RepWhatColumn ? row.RepWhat : row.RepBy;
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return value;
    const bool isBad = index.column() == RepWhatColumn && index.row() < int(results.size())
        && (results[std::size_t(index.row())].state == CleanUpRowState::BadExpression
            || results[std::size_t(index.row())].state == CleanUpRowState::Stopped);
    if (role == Qt::DecorationRole && isBad)
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    return {};
}

QVariant CleanUpModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static constexpr std::array Captions
        = {"replace what"_L1, "replace by"_L1, "case"_L1, "RegExp"_L1, "use"_L1};
    if (orientation == Qt::Horizontal)
        return role == Qt::DisplayRole && section < int(Captions.size())
            ? QVariant(QString(Captions[std::size_t(section)]))
            : QVariant();
    if (role == Qt::ToolTipRole)
        return resultText(section);
    if (role != Qt::DisplayRole)
        return {};
    if (section >= int(results.size()))
        return QString();
    const CleanUpRowResult& result = results[std::size_t(section)];
    switch (result.state) {
    case CleanUpRowState::Skipped:
        return u"\u2013"_s;
    case CleanUpRowState::Applied:
        return QString::number(result.replacements);
    case CleanUpRowState::BadExpression:
    case CleanUpRowState::Stopped:
        break;
    }
    return u"!"_s;
}

bool CleanUpModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || index.row() >= int(rows.size()))
        return false;
    CleanUpRow changed = rows[std::size_t(index.row())];
    if (bool CleanUpRow::*flag = FlagOf(index.column())) {
        if (role != Qt::CheckStateRole)
            return false;
        changed.*flag = value.toInt() == Qt::Checked;
    } else if (role == Qt::EditRole) {
        QString& text = index.column() == RepWhatColumn ? changed.RepWhat : changed.RepBy;
        if (text == value.toString())
            return true;
        text = OneLine(value.toString());
    } else {
        return false;
    }
    if (changed == rows[std::size_t(index.row())])
        return true;
    keepForUndo();
    rows[std::size_t(index.row())] = std::move(changed);
    Q_EMIT dataChanged(index, index);
    Q_EMIT edited();
    return true;
}

// ---------------------------------------------------------------- clipboard

QString TextOfRows(const std::vector<CleanUpRow>& rows)
{
    QString text;
    const auto flag = [](bool set) { return set ? "\t1"_L1 : "\t0"_L1; };
    for (const CleanUpRow& row : rows)
        text += Quoted(row.RepWhat) + u'\t' + Quoted(row.RepBy) + flag(row.Case) + flag(row.RegExp)
            + flag(row.Enabled) + u'\n';
    return text;
}

std::vector<CleanUpRow> RowsOfText(const QString& text)
{
    std::vector<CleanUpRow> rows;
    const QString lines = QString(text).replace("\r\n"_L1, "\n"_L1);
    QStringView rest(lines);
    while (!rest.isEmpty()) {
        QStringList fields;
        for (bool endsLine = false; !endsLine;)
            fields += TakeField(rest, endsLine);
        if (fields.size() < 2)
            return {};
        rows.push_back({.RepWhat = OneLine(fields[0]),
                        .RepBy = OneLine(fields[1]),
                        .Case = fields.value(2) == "1"_L1,
                        .RegExp = fields.value(3) == "1"_L1,
                        .Enabled = fields.value(4, u"1"_s) != "0"_L1});
    }
    return rows;
}

} // namespace vmk
