// Draws every toolbar picture in all states and sizes on one sheet, for a person:
//     contactsheet sheet.png
#include "ToolbarPictures.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// The half of the sheet for one palette: a row for each size, the three states side by side.
void DrawHalf(QPainter& painter, const QStringList& names, int top, const QColor& ground)
{
    QPalette palette;
    palette.setColor(QPalette::Window, ground);
    QGuiApplication::setPalette(palette);
    painter.fillRect(0, top, 1200, 340, ground);
    int y = top + 8;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Disabled}) {
        for (const int size : {16, 24, 48}) {
            for (int i = 0; i < names.size(); ++i)
                vmk::ToolbarPicture(names[i]).paint(&painter, QRect(8 + i * 58, y, size, size),
                                                    Qt::AlignCenter, mode);
            y += size + 8;
        }
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: contactsheet sheet.png\n", stderr);
        return 1;
    }
    QStringList names = QDir(u":/icons"_s).entryList({u"*.svg"_s});
    names.replaceInStrings(u".svg"_s, QString());
    QImage sheet(1200, 680, QImage::Format_RGB32);
    QPainter painter(&sheet);
    DrawHalf(painter, names, 0, QColor(0xF0, 0xF0, 0xF0));
    DrawHalf(painter, names, 340, QColor(0x2B, 0x2F, 0x36));
    painter.end();
    return sheet.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
