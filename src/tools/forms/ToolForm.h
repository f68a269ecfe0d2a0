#pragma once

#include <QPointer>
#include <QWidget>

namespace vmk {

/// A tool window: modeless, beside the main window, to which it belongs. There is one instance of each, see
/// `InstanceOf`. Escape closes it.
class ToolForm : public QWidget
{
    Q_OBJECT

public:
    /// Shows the form and gives it the keyboard. A form that was closed is placed beside the main window.
    void ShowForm();

protected:
    /// @param name the form's name, also for tests
    ToolForm(const QString& name, const QString& title);

    /// Runs each time the closed form is shown.
    virtual void Form_Load() { }
    /// Runs when the form is closed.
    virtual void Form_Unload() { }
    /// Where the form is placed; a position of `PlaceFormBeside`.
    [[nodiscard]] virtual int placement() const;

    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool loaded = false;
};

/// The form if it was made already, else null.
template <typename Form>
QPointer<Form>& ExistingForm()
{
    static QPointer<Form> form;
    return form;
}

/// The only instance of a form, made when it is first asked for; it is destroyed with the main window.
template <typename Form>
Form& InstanceOf()
{
    QPointer<Form>& form = ExistingForm<Form>();
    if (!form)
        form = new Form;
    return *form;
}

} // namespace vmk
