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

/// The kind of a toolbar button.
enum class ToolbarButtonStyle
{
    Push = 0,
    Check = 1,
    Group = 2,
    Separator = 3,
    /// Space for another control, with an explicit width.
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

/// The snapshot of one button.
struct ToolbarButtonSnapshot
{
    /// The drop-down menu; empty if the button has none.
    QList<ToolbarMenuEntry> Buttmnu;
    QVariant BTag;
    QString BCaption;
    QString BKey;
    ToolbarButtonStyle BStyle = ToolbarButtonStyle::Push;
    /// Pixels; 0 if the content determines the width.
    int BWidth = 0;
    bool BEnabled = true;
    /// Stored only; Qt's buttons have no third state.
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

/// Customises the toolbar: takes a snapshot of its design, and rebuilds the toolbar from it in the user's
/// order.
///
/// The toolbar owns the actions of all buttons of the design, also of those that it does not show.
class ClTB
{
public:
    // ---- properties

    /// The customised toolbar. Setting it takes the snapshot, stores the order of the buttons as the default
    /// order, and reads `NoText` and `LargeIcons` from the store.
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

    /// The next load or store uses the default order.
    bool UseDefaults = false;
    /// Name and section of the store; empty for the program's title and "Settings".
    QString ApplicationName;
    QString SectionName;

    /// Buttons in the design.
    [[nodiscard]] int DefButtCount() const { return int(design.size()); }
    /// Buttons and separators in the toolbar now.
    [[nodiscard]] int ButtCount() const;
    /// Returns the snapshot of a button of the design, from 1; null if there is none. The next load applies
    /// changes.
    [[nodiscard]] ToolbarButtonSnapshot* Button(int index);

    // ---- operations

    void ClearButtons();
    /// Stores the current order, `NoText` and `LargeIcons`. With `UseDefaults` the order is stored
    /// as the default one, and the flag is cleared.
    void SaveToReg();
    /// Rebuilds the toolbar from the default order.
    void LoadDefs();
    /// Rebuilds the toolbar from the stored order; from the design if nothing usable is stored.
    void LoadTBFromReg();
    /// Adds a separator at the toolbar's end.
    void AddSeparator();
    /// \param position  in the toolbar, from 1
    /// \param index     receives the button's index in the design; `SeparatorIndex` for a separator
    /// \return false, with `index` unchanged, if there is no button at the position
    bool IndexFromPosition(int position, int& index) const;

    /// Returns the current order of the toolbar.
    [[nodiscard]] ToolbarOrder Order() const;
    /// Rebuilds the toolbar in an order of design indexes; other indexes are skipped.
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
