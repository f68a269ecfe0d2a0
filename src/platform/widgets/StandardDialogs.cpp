#include "StandardDialogs.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>

using namespace Qt::StringLiterals;

namespace vmk {

QStringList NameFilters(const QString& filter)
{
    const QStringList pieces = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
        // The toolkit takes what stands in the last brackets for the patterns.
        const QString patterns = u"("_s + QString(pieces[i + 1]).replace(u';', u' ') + u")"_s;
        const QString& description = pieces[i];
        filters += description.endsWith(patterns) ? description : (description + u' ' + patterns).trimmed();
    }
    return filters;
}

QStringList ShowFileDialog(const FileDialogRequest& request)
{
    QFileDialog dialog(QApplication::activeWindow(), request.title);
    const bool saving = request.kind == FileDialogRequest::Save;
    dialog.setAcceptMode(saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(saving                                               ? QFileDialog::AnyFile
                           : request.kind == FileDialogRequest::OpenSeveral ? QFileDialog::ExistingFiles
                                                                            : QFileDialog::ExistingFile);
    // Replacing is the caller's question.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (const QStringList filters = NameFilters(request.filter); !filters.isEmpty())
        dialog.setNameFilters(filters);
    if (QDir(request.folder).exists() && !request.folder.isEmpty())
        dialog.setDirectory(request.folder);
    if (!request.fileName.isEmpty())
        dialog.selectFile(request.fileName);

    const QString folder = QDir::currentPath();
    const bool chosen = dialog.exec() == QDialog::Accepted;
    QDir::setCurrent(folder);
    return chosen ? dialog.selectedFiles() : QStringList();
}

std::optional<FontChoice> ShowFontDialog(const FontChoice& current)
{
    QFont font(current.name);
    if (current.size > 0)
        font.setPointSize(current.size);
    font.setBold(current.bold);
    font.setItalic(current.italic);

    bool chosen = false;
    const QFont answer = QFontDialog::getFont(&chosen, font, QApplication::activeWindow());
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
    const QColor answer
        = QColorDialog::getColor(start.isValid() ? start : QColor(Qt::black), QApplication::activeWindow());
    if (!answer.isValid())
        return std::nullopt;
    return answer.name(QColor::HexRgb).toUpper();
}

} // namespace vmk
