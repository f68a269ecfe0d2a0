#include "StandardDialogs.h"

#include "DialogOwner.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <QHeaderView>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// Wide enough for long names next to sizes and dates.
constexpr QSize LeastFileDialog(760, 480);

/// The extension in the first pattern of the filter; empty if the pattern allows any.
QString ExtensionOf(const QString& filter)
{
    const QString pattern = filter.section(u'|', 1, 1);
    const QString extension = pattern.startsWith(u"*."_s) ? pattern.mid(2) : QString();
    return extension.contains(u'*') || extension.contains(u';') ? QString() : extension;
}

} // namespace

namespace {

/// The file name of a request; with the extension if only such a file exists.
QString OfferedName(const FileDialogRequest& request)
{
    const QDir folder(request.folder);
    const QString whole = request.fileName + u'.' + ExtensionOf(request.filter);
    return request.kind != FileDialogRequest::Save && !folder.exists(request.fileName) && folder.exists(whole)
        ? whole
        : request.fileName;
}

/// Dates and sizes are completely visible; names have the remaining width.
void FitColumns(const QFileDialog& dialog)
{
    const auto* list = dialog.findChild<QTreeView*>(u"treeView"_s);
    if (list == nullptr)
        return;
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

} // namespace

QStringList NameFilters(const QString& filter)
{
    const QStringList pieces = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
        // The toolkit reads the patterns from the last brackets.
        const QString patterns = u"("_s + QString(pieces[i + 1]).replace(u';', u' ') + u")"_s;
        const QString& description = pieces[i];
        filters += description.endsWith(patterns) ? description : (description + u' ' + patterns).trimmed();
    }
    return filters;
}

QStringList ShowFileDialog(const FileDialogRequest& request)
{
    QFileDialog dialog(DialogOwner(), request.title);
    const bool saving = request.kind == FileDialogRequest::Save;
    dialog.setAcceptMode(saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(saving                                               ? QFileDialog::AnyFile
                           : request.kind == FileDialogRequest::OpenSeveral ? QFileDialog::ExistingFiles
                                                                            : QFileDialog::ExistingFile);
    // The caller asks before replacing a file.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    // A name typed without an extension gets the one that the program expects; so does a name that is
    // offered.
    dialog.setDefaultSuffix(ExtensionOf(request.filter));
    dialog.resize(dialog.sizeHint().expandedTo(LeastFileDialog));
    if (const QStringList filters = NameFilters(request.filter); !filters.isEmpty())
        dialog.setNameFilters(filters);
    if (QDir(request.folder).exists() && !request.folder.isEmpty())
        dialog.setDirectory(request.folder);
    if (!request.fileName.isEmpty())
        dialog.selectFile(OfferedName(request));

    FitColumns(dialog);
    const QString folder = QDir::currentPath();
    const bool chosen = dialog.exec() == QDialog::Accepted;
    QDir::setCurrent(folder);
    return chosen ? dialog.selectedFiles() : QStringList();
}

std::optional<FontChoice> ShowFontDialog(const FontDialogRequest& request)
{
    const FontChoice& current = request.current;
    QFont font = current.name.isEmpty() ? QFont() : QFont(current.name);
    if (current.size > 0)
        font.setPointSize(current.size);
    font.setBold(current.bold);
    font.setItalic(current.italic);

    bool chosen = false;
    const QFont answer = QFontDialog::getFont(&chosen, font, DialogOwner(), request.title);
    if (!chosen)
        return std::nullopt;
    return FontChoice{.name = answer.family(),
                      .size = answer.pointSize(),
                      .bold = answer.bold(),
                      .italic = answer.italic()};
}

std::optional<QString> ShowColorDialog(const QString& current)
{
    const QColor start(current);
    const QColor answer = QColorDialog::getColor(start.isValid() ? start : QColor(Qt::black), DialogOwner());
    if (!answer.isValid())
        return std::nullopt;
    return answer.name(QColor::HexRgb).toUpper();
}

} // namespace vmk
