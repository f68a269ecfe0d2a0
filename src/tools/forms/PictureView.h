#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

namespace vmk {

/// Draws a picture at its own size, or a line of text where there is none.
///
/// One pixel of the picture is one pixel of a plain screen. On a screen with more dots it is a whole number
/// of dots in each direction, so that nothing is blurred.
class PictureView : public QWidget
{
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    /// A null picture shows `message`.
    void Show(const QImage& newPicture, const QString& newMessage);

    [[nodiscard]] const QImage& picture() const { return image; }
    [[nodiscard]] const QString& message() const { return text; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Fits the size of the widget to the picture and the screen.
    void fit();

    QImage image;
    QString text;
    qreal fittedRatio = 0;
};

} // namespace vmk
