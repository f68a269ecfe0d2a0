#include "Boxes.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

bool PrintBox(BoxKind /*kind*/, const QString& text, const QString& title)
{
    QString line = title + u": "_s + text + u'\n';
    line.replace(u"\r\n"_s, u"\n"_s);
    std::fputs(line.toLocal8Bit().constData(), stderr);
    return false;
}

} // namespace

Seam<bool(BoxKind, const QString&, const QString&)>& BoxSeam()
{
    static Seam<bool(BoxKind, const QString&, const QString&)> seam(PrintBox);
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

} // namespace vmk
