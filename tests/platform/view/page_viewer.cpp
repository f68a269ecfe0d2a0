// Opens a page file in the display, for a person, or for a script with real keys and mouse.
//
//   page_viewer PAGE [--size WxH] [--shot FILE] [--dump FILE] [--read-only]
//
// --shot saves a picture of the window as soon as it is painted, and ends.
// --dump writes the lines of the page's text when the window is closed. Ctrl+Q closes it.

#include "DisplayView.h"
#include "VirtualKeys.h"
#include "WidgetSeams.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QTextStream>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

bool dumpText(const vmk::DisplayDocument& document, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int line = 0; line < document.lineCount(); ++line)
        file.write(document.line(line).text.toUtf8() + '\n');
    return true;
}

QSize sizeOf(const QString& text)
{
    const QStringList parts = text.split(u'x');
    const QSize size = parts.size() == 2 ? QSize(parts[0].toInt(), parts[1].toInt()) : QSize();
    return size.isEmpty() ? QSize(900, 700) : size;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(u"page"_s, u"The page file."_s);
    parser.addOption({u"size"_s, u"Size of the window, as WxH."_s, u"WxH"_s, u"900x700"_s});
    parser.addOption({u"shot"_s, u"Leave a picture of the window and end."_s, u"file"_s});
    parser.addOption({u"dump"_s, u"Write the text when the window is closed."_s, u"file"_s});
    parser.addOption({u"read-only"_s, u"Show the page without editing."_s});
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    vmk::FillWidgetSeams();
    vmk::DisplayView view;
    view.resize(sizeOf(parser.value(u"size"_s)));
    view.setWindowTitle(u"page_viewer: loading"_s);
    view.events.onkeydown = [&view](vmk::DisplayEvent& event) {
        if (!event.ctrlKey || event.keyCode != 'Q')
            return;
        event.returnValue = false;
        view.close();
    };
    view.events.ondocumentcomplete = [&](const QString& location) {
        if (!parser.isSet(u"read-only"_s))
            view.setDesignMode(u"On"_s);
        view.setWindowTitle(u"page_viewer: "_s + location);
        if (parser.isSet(u"shot"_s)) {
            QTimer::singleShot(
                200, &view, [&] { QApplication::exit(view.grab().save(parser.value(u"shot"_s)) ? 0 : 1); });
        }
    };
    view.show();
    view.focus();
    view.Navigate(parser.positionalArguments().constFirst());
    const int result = QApplication::exec();
    if (parser.isSet(u"dump"_s) && !dumpText(view.document(), parser.value(u"dump"_s)))
        return 1;
    return result;
}
