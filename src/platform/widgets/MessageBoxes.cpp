#include "MessageBoxes.h"

#include "DialogOwner.h"
#include "FileNames.h"

#include <QGuiApplication>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

QMessageBox::Icon IconOf(BoxKind kind)
{
    switch (kind) {
    case BoxKind::Plain:
        return QMessageBox::NoIcon;
    case BoxKind::Information:
        return QMessageBox::Information;
    case BoxKind::Stop:
        return QMessageBox::Critical;
    case BoxKind::YesNo:
    case BoxKind::Confirm:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

/// Shows the default pointer while the box is open, also during long work.
class UsualPointerScope
{
public:
    UsualPointerScope()
        : replaced(QGuiApplication::overrideCursor() != nullptr)
    {
        if (replaced)
            QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
    }
    UsualPointerScope(const UsualPointerScope&) = delete;
    UsualPointerScope& operator=(const UsualPointerScope&) = delete;
    ~UsualPointerScope()
    {
        if (replaced)
            QGuiApplication::restoreOverrideCursor();
    }

private:
    bool replaced;
};

void SetTexts(QMessageBox& box, const QString& text, const QString& title)
{
    box.setWindowTitle(ReadableName(title));
    box.setTextFormat(Qt::PlainText);
    box.setText(ReadableName(text).replace(u"\r\n"_s, u"\n"_s));
}

} // namespace

bool ShowMessageBox(BoxKind kind, const QString& text, const QString& title)
{
    QMessageBox box(DialogOwner());
    box.setIcon(IconOf(kind));
    SetTexts(box, text, title);
    if (kind == BoxKind::YesNo || kind == BoxKind::Confirm) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        // Closing the box or Esc means No.
        box.setEscapeButton(QMessageBox::No);
        box.setDefaultButton(kind == BoxKind::Confirm ? QMessageBox::No : QMessageBox::Yes);
    }
    const UsualPointerScope pointer;
    return box.exec() == QMessageBox::Yes;
}

BoxAnswer ShowChoiceBox(const QString& text, const QString& title)
{
    QMessageBox box(DialogOwner());
    box.setIcon(QMessageBox::Question);
    SetTexts(box, text, title);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Yes);
    const UsualPointerScope pointer;
    switch (box.exec()) {
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    default:
        return BoxAnswer::Cancel;
    }
}

} // namespace vmk
