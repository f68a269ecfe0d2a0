#pragma once

#include <QWidget>

class QLabel;

namespace vmk {

/// A small note without a frame, beside the main window, that tells what is going on.
class ActionInfoF : public QWidget
{
    Q_OBJECT

public:
    explicit ActionInfoF(QWidget* owner);

    QLabel* SpellReport = nullptr;

protected:
    void showEvent(QShowEvent* event) override;
};

} // namespace vmk
