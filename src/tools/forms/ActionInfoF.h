#pragma once

#include <QWidget>

class QLabel;

namespace vmk {

/// A small frameless note beside the main window that shows the current activity.
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
