#pragma once

#include <QPointer>
#include <QWidget>

namespace vmk {

/// A modeless tool window, owned by the main window. Each form has a single instance, see `InstanceOf`.
/// Escape closes it.
class ToolForm : public QWidget
{
    Q_OBJECT

public:
    /// Shows and activates the form. A closed form is placed beside the main window first.
    void ShowForm();

protected:
    /// \param name  the object name
    ToolForm(const QString& name, const QString& title);

    /// Called each time the closed form is shown.
    virtual void Form_Load() { }
    /// Called when the form is closed.
    virtual void Form_Unload() { }
    /// Returns the position of the form, as a number of `PlaceFormBeside`.
    [[nodiscard]] virtual int placement() const;

    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool loaded = false;
};

/// Returns the instance of a form; null if it was not created yet.
template <typename Form>
QPointer<Form>& ExistingForm()
{
    static QPointer<Form> form;
    return form;
}

/// Returns the single instance of a form, created at the first call. It is destroyed with the main window.
template <typename Form>
Form& InstanceOf()
{
    QPointer<Form>& form = ExistingForm<Form>();
    if (!form)
        form = new Form;
    return *form;
}

} // namespace vmk
