#include "CommLineInfoF.h"

#include "LineEnds.h"
#include "StartUpVariables.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QLabel>
#include <QScreen>
#include <QThread>
#include <QWindow>

#include <memory>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr float MarginPixels = 8;
constexpr float LeastWidth = 3500;
constexpr float LeastHeight = 1300;

std::unique_ptr<CommLineInfoF>& TheForm()
{
    static std::unique_ptr<CommLineInfoF> form;
    return form;
}

/// Waits until the window is painted, because the next step may block the event loop.
void WaitUntilPainted(const QWidget& form)
{
    constexpr qint64 PatienceMilliseconds = 500;
    constexpr unsigned long StepMilliseconds = 5;
    QElapsedTimer timer;
    timer.start();
    const QWindow* const window = form.windowHandle();
    while (window && !window->isExposed() && timer.elapsed() < PatienceMilliseconds) {
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(StepMilliseconds);
    }
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace

ReportGeometry LayOutReport(const ReportMeasures& measures)
{
    ReportGeometry result;
    const float frame = measures.edgesY + measures.caption;
    result.formWidth = std::max(measures.labelWidth + 2 * measures.margin + measures.edgesX, LeastWidth);
    result.formHeight = std::max(measures.labelHeight + 2 * measures.margin + frame, LeastHeight);
    result.labelLeft = (result.formWidth - measures.labelWidth) / 2;
    result.labelTop = (result.formHeight - frame - measures.labelHeight) / 2;
    return result;
}

CommLineInfoF::CommLineInfoF()
    : ReportL(new QLabel(this))
{
    setObjectName(u"CommLineInfoF"_s);
    setWindowTitle(u" Fiction Book validation result"_s);
    setWindowIcon(QIcon(u":/icons/vellumark.svg"_s));
    // A report can only be closed: its caption needs the space of the other buttons.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setPalette(QPalette(QColor(0xFB, 0xF7, 0xEC)));
    ReportL->setObjectName(u"ReportL"_s);
    ReportL->setTextFormat(Qt::PlainText);
    ReportL->setAlignment(Qt::AlignCenter);
    QFont font = ReportL->font();
    font.setPointSizeF(font.pointSizeF() + 1);
    ReportL->setFont(font);
}

CommLineInfoF::~CommLineInfoF() = default;

CommLineInfoF& CommLineInfoF::Instance()
{
    if (!TheForm())
        TheForm().reset(new CommLineInfoF);
    return *TheForm();
}

CommLineInfoF* CommLineInfoF::Existing()
{
    return TheForm().get();
}

void CommLineInfoF::Unload()
{
    TheForm().reset();
}

void CommLineInfoF::ShowActionReport(const QString& text, const ReportOptions& options)
{
    if (options.topmost)
        setWindowFlag(Qt::WindowStaysOnTopHint);
    ReportL->setText(QString(text).replace(QLatin1StringView(CrLf), u"\n"_s));
    ReportL->adjustSize();
    arrange();
    if (!options.caption.isEmpty())
        setWindowTitle(options.caption);
    ReportL->repaint();
    repaint();

    if (isVisible())
        return;
    if (options.modal) {
        exec();
    } else {
        show();
        WaitUntilPainted(*this);
    }
}

void CommLineInfoF::arrange()
{
    const float margin = MarginPixels;
    const ReportGeometry place = LayOutReport({
        .labelWidth = static_cast<float>(ReportL->width()) * TwipsPerPixelX,
        .labelHeight = static_cast<float>(ReportL->height()) * TwipsPerPixelY,
        .margin = margin * TwipsPerPixelX,
        .edgesX = 2 * EdgeX * TwipsPerPixelX,
        .edgesY = 2 * EdgeY * TwipsPerPixelY,
        .caption = CaptionHeight * TwipsPerPixelY,
    });
    const auto pixels = [](float twips, float perPixel) { return qRound(twips / perPixel); };
    const QSize client(pixels(place.formWidth, TwipsPerPixelX) - qRound(2 * EdgeX),
                       pixels(place.formHeight, TwipsPerPixelY) - qRound(2 * EdgeY + CaptionHeight));
    setFixedSize(client);
    ReportL->move(pixels(place.labelLeft, TwipsPerPixelX), pixels(place.labelTop, TwipsPerPixelY));

    const QRect area = screen()->availableGeometry();
    move(area.center() - QPoint(client.width() / 2, client.height() / 2));
}

} // namespace vmk
