#include "Boxes.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

void Print(const QString& text, const QString& title)
{
    QString line = title + u": "_s + text + u'\n';
    line.replace(u"\r\n"_s, u"\n"_s);
    std::fputs(line.toLocal8Bit().constData(), stderr);
}

} // namespace

Seam<bool(BoxKind, const QString&, const QString&)>& BoxSeam()
{
    static Seam<bool(BoxKind, const QString&, const QString&)> seam(
        [](BoxKind, const QString& text, const QString& title) {
            Print(text, title);
            return false;
        });
    return seam;
}

Seam<BoxAnswer(const QString&, const QString&)>& ChoiceBoxSeam()
{
    static Seam<BoxAnswer(const QString&, const QString&)> seam(
        [](const QString& text, const QString& title) {
            Print(text, title);
            return BoxAnswer::Cancel;
        });
    return seam;
}

void PlainBox(const QString& text, const QString& title)
{
    BoxSeam()(BoxKind::Plain, text, title);
}

void InformationBox(const QString& text, const QString& title)
{
    BoxSeam()(BoxKind::Information, text, title);
}

void StopBox(const QString& text, const QString& title)
{
    BoxSeam()(BoxKind::Stop, text, title);
}

bool YesNoBox(const QString& text, const QString& title)
{
    return BoxSeam()(BoxKind::YesNo, text, title);
}

bool ConfirmBox(const QString& text, const QString& title)
{
    return BoxSeam()(BoxKind::Confirm, text, title);
}

BoxAnswer ChoiceBox(const QString& text, const QString& title)
{
    return ChoiceBoxSeam()(text, title);
}

} // namespace vmk
