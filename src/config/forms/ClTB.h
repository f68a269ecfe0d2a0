#pragma once

#include "ToolbarOrder.h"

#include <QIcon>
#include <QList>
#include <QSize>
#include <QString>
#include <QVariant>

#include <vector>

class QAction;
class QToolBar;

namespace vmk {

/// Pictures of one size, in the order of the toolbar's design.
struct ImageList
{
    QSize size;
    QList<QIcon> images;
};

/// What a toolbar button is.
enum class ToolbarButtonStyle
{
    Push = 0,
    Check = 1,
    Group = 2,
    Separator = 3,
    /// Room for another control; has a width of its own.
    Placeholder = 4,
    DropDown = 5,
};

/// One entry of a button's drop-down menu.
struct ToolbarMenuEntry
{
    int index = 0;
    QString key;
    QString text;
    bool enabled = true;
    bool visible = true;
};

/// All that the snapshot knows of one button.
struct ToolbarButtonSnapshot
{
    /// The drop-down menu; empty if the button has none.
    QList<ToolbarMenuEntry> Buttmnu;
    QVariant BTag;
    QString BCaption;
    QString BKey;
    ToolbarButtonStyle BStyle = ToolbarButtonStyle::Push;
    /// Pixels; 0 for a button that is as wide as its content.
    int BWidth = 0;
    bool BEnabled = true;
    /// Kept in the snapshot; the toolkit's buttons have no third state.
    bool BMixedState = false;
    bool BValue = false;
    /// Pixels from the toolbar's left edge when the snapshot was taken.
    int BPosition = 0;
    QString BDescript;
    QString BTooltip;
    /// Position in the image lists, from 1.
    int BImage = 0;
    bool BVisible = true;
};

/// The toolbar's customising: a snapshot of the toolbar as designed, and the toolbar rebuilt from it in the
/// user's order.
///
/// The buttons are actions that the toolbar owns. They live as long as the toolbar, also while they are not
/// shown in it.
class ClTB
{
public:
    // ---- properties

    /// The toolbar worked on. Setting it takes the snapshot of its buttons, stores their order as the default
    /// one, and reads the looks from the store.
    [[nodiscard]] QToolBar* Tbar() const { return toolbar; }
    void setTbar(QToolBar* designed);

    /// Pictures for the lists of the customising dialog.
    ImageList LVImages;
    /// Small pictures: normal, under the pointer, disabled.
    ImageList TBImages, TBHotImages, TBDisImages;
    /// Large pictures.
    ImageList TBImagesL, TBHotImagesL, TBDisImagesL;

    /// 1: buttons show no text labels.
    int NoText = 1;
    /// 1: large icons.
    int LargeIcons = 0;

    /// The next load takes the default order; the next store goes to the default's key.
    bool UseDefaults = false;
    /// Name and section of the store; empty for the program's title and "Settings".
    QString ApplicationName;
    QString SectionName;

    /// Buttons in the design.
    [[nodiscard]] int DefButtCount() const { return int(design.size()); }
    /// Buttons and separators in the toolbar now.
    [[nodiscard]] int ButtCount() const;
    /// The snapshot of a button of the design, from 1; null beyond its ends. Changes show after the next
    /// load.
    [[nodiscard]] ToolbarButtonSnapshot* Button(int index);

    // ---- operations

    void ClearButtons();
    /// Stores the toolbar's present order, `NoText` and `LargeIcons`. With `UseDefaults` the order is stored
    /// as the default one, and the flag is cleared.
    void SaveToReg();
    /// Rebuilds the toolbar from the default order.
    void LoadDefs();
    /// Rebuilds the toolbar from the stored order; from the design if nothing usable is stored.
    void LoadTBFromReg();
    /// Adds a separator at the toolbar's end.
    void AddSeparator();
    /// @param position  in the toolbar, from 1
    /// @param index     receives the button's index in the design; `SeparatorIndex` for a separator
    /// @return false, with `index` as it is, if nothing is at the position
    bool IndexFromPosition(int position, int& index) const;

    /// The toolbar's present order.
    [[nodiscard]] ToolbarOrder Order() const;
    /// Rebuilds the toolbar in an order of design indexes; indexes that the design lacks are left out.
    void ShowOrder(const ToolbarOrder& order);

private:
    struct DesignButton
    {
        QAction* action;
        ToolbarButtonSnapshot snapshot;
    };

    void takeSnapshot();
    void restore(const DesignButton& button) const;
    void addButton(const DesignButton& button);
    void applyLook();
    [[nodiscard]] QIcon pictureOf(int image) const;

    QToolBar* toolbar = nullptr;
    std::vector<DesignButton> design;
};

} // namespace vmk
