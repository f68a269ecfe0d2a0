#pragma once

#include <QMainWindow>

namespace vmk {

/// The main window, the only one.
class Form1 : public QMainWindow
{
    Q_OBJECT

public:
    Form1();
    ~Form1() override;

    /// The form's load event: places and shows the window, and shows the welcome page on a first start,
    /// else the empty page. With `ValidateAfterLoad` no page is shown.
    void Load();

protected:
    void closeEvent(QCloseEvent* event) override;
};

} // namespace vmk
