#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

namespace vmk {

/// Draws a picture in its original size, or a message if there is no picture.
///
/// A pixel of the picture is one device-independent pixel. On a screen with a higher density it covers a
/// whole number of device pixels in each direction, so that the picture is not blurred.
class PictureView : public QWidget
{
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    /// Shows the picture, or the message if the picture is null.
    void Show(const QImage& newPicture, const QString& newMessage);

    [[nodiscard]] const QImage& picture() const { return image; }
    [[nodiscard]] const QString& message() const { return text; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSize contentSize() const;
    /// Adapts the size of the widget to the picture and the screen.
    void fit();

    QImage image;
    QString text;
    qreal fittedRatio = 0;
};

} // namespace vmk
