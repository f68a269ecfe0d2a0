#pragma once

#include "ClTB.h"
#include "ToolbarOrder.h"

#include <QWidget>

#include <functional>

class QComboBox;
class QListWidget;
class QPushButton;

namespace vmk {

/// The dialog for the buttons of the toolbar, their order and their look. Each change is applied to the
/// toolbar immediately. The main window stores the toolbar when the program ends.
class frmTBCustomise : public QWidget
{
    Q_OBJECT

public:
    /// \param customised    must outlive the form
    /// \param placeControls moves the controls beside the toolbar; called after each change
    frmTBCustomise(ClTB& customised, std::function<void()> placeControls, QWidget* owner);

    /// Fills both lists from the toolbar.
    void LoadLVs();
    /// Rebuilds the toolbar from the right list.
    void UpdateTB();

    /// "Available buttons" and "Toolbar buttons".
    QListWidget* LVLeft = nullptr;
    QListWidget* LVRight = nullptr;
    /// The content of both lists when the form was opened; never shown.
    ToolbarOrder LVLeftDef;
    ToolbarOrder LVRightDef;

    QPushButton* cmdAdd = nullptr;
    QPushButton* cmdRemove = nullptr;
    QPushButton* cmdUp = nullptr;
    QPushButton* cmdDown = nullptr;
    QPushButton* cmdReset = nullptr;
    QPushButton* cmdDefault = nullptr;
    QPushButton* cmdClose = nullptr;
    QComboBox* CboText = nullptr;
    QComboBox* cboImages = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void makeControls();
    void layOutControls();
    void connectControls();
    void showLists(int leftRow, int rightRow);
    void fillList(QListWidget& list, const ToolbarOrder& order, int row);
    void enableButtons();
    void add();
    void remove();
    void move(int step);
    void reset();
    void takeDefaults();

    ClTB& toolbar;
    std::function<void()> placeMainControls;
    ToolbarLists lists;
};

} // namespace vmk
