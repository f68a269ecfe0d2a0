#include "ClTB.h"

#include "ToolbarStore.h"

#include <QAction>
#include <QIconEngine>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QToolBar>
#include <QWidgetAction>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int On = 1;

/// One icon of three pictures: normal, under the pointer, disabled.
class ThreeLooks : public QIconEngine
{
public:
    ThreeLooks(QIcon normalLook, QIcon hotLook, QIcon disabledLook)
        : normal(std::move(normalLook))
        , hot(std::move(hotLook))
        , disabled(std::move(disabledLook))
    {
    }

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State state) override
    {
        look(mode).paint(painter, area, Qt::AlignCenter, mode, state);
    }

    QPixmap pixmap(const QSize& pixels, QIcon::Mode mode, QIcon::State state) override
    {
        return look(mode).pixmap(pixels, 1.0, mode, state);
    }

    [[nodiscard]] QIconEngine* clone() const override { return new ThreeLooks(normal, hot, disabled); }
    bool isNull() override { return normal.isNull(); }

private:
    [[nodiscard]] const QIcon& look(QIcon::Mode mode) const
    {
        const QIcon& wanted = mode == QIcon::Disabled ? disabled : mode == QIcon::Active ? hot : normal;
        return wanted.isNull() ? normal : wanted;
    }

    QIcon normal;
    QIcon hot;
    QIcon disabled;
};

ToolbarButtonStyle StyleOf(const QAction& action)
{
    if (action.isSeparator())
        return ToolbarButtonStyle::Separator;
    if (qobject_cast<const QWidgetAction*>(&action))
        return ToolbarButtonStyle::Placeholder;
    if (action.menu())
        return ToolbarButtonStyle::DropDown;
    if (action.isCheckable())
        return action.actionGroup() ? ToolbarButtonStyle::Group : ToolbarButtonStyle::Check;
    return ToolbarButtonStyle::Push;
}

QList<ToolbarMenuEntry> EntriesOf(const QMenu* menu)
{
    QList<ToolbarMenuEntry> entries;
    for (const QAction* entry : menu ? menu->actions() : QList<QAction*>())
        entries.append({int(entries.size()) + 1, entry->objectName(), entry->text(), entry->isEnabled(),
                        entry->isVisible()});
    return entries;
}

void RestoreMenu(QMenu* menu, const QList<ToolbarMenuEntry>& entries)
{
    const QList<QAction*> actions = menu ? menu->actions() : QList<QAction*>();
    const qsizetype count = std::min(actions.size(), entries.size());
    for (qsizetype i = 0; i < count; ++i) {
        actions[i]->setText(entries[i].text);
        actions[i]->setEnabled(entries[i].enabled);
        actions[i]->setVisible(entries[i].visible);
    }
}

QIcon ImageAt(const ImageList& list, int image)
{
    return list.images.value(image - 1);
}

/// Prevents a widget from painting during its scope.
class PaintingStopped
{
public:
    explicit PaintingStopped(QWidget& stopped)
        : widget(stopped)
    {
        widget.setUpdatesEnabled(false);
    }
    PaintingStopped(const PaintingStopped&) = delete;
    PaintingStopped& operator=(const PaintingStopped&) = delete;
    ~PaintingStopped() { widget.setUpdatesEnabled(true); }

private:
    QWidget& widget;
};

} // namespace

// ---------------------------------------------------------------- the snapshot

void ClTB::setTbar(QToolBar* designed)
{
    toolbar = designed;
    takeSnapshot();
    const ToolbarStore store(ApplicationName, SectionName);
    NoText = store.number(ToolbarStore::NoTextKey, On);
    LargeIcons = store.number(ToolbarStore::LargeIconsKey, !On);
    // The stored default order always corresponds to the current design.
    UseDefaults = true;
    SaveToReg();
}

void ClTB::takeSnapshot()
{
    design.clear();
    for (QAction* action : toolbar->actions()) {
        const QWidget* widget = toolbar->widgetForAction(action);
        ToolbarButtonSnapshot button;
        button.Buttmnu = EntriesOf(action->menu());
        button.BTag = action->data();
        button.BCaption = action->text();
        button.BKey = action->objectName();
        button.BStyle = StyleOf(*action);
        if (button.BStyle == ToolbarButtonStyle::Placeholder && widget)
            button.BWidth = widget->width();
        button.BEnabled = action->isEnabled();
        button.BValue = action->isChecked();
        button.BPosition = widget ? widget->x() : 0;
        button.BDescript = action->statusTip();
        button.BTooltip = action->toolTip();
        button.BImage = int(design.size()) + 1;
        button.BVisible = action->isVisible();
        design.push_back({action, button});
    }
}

int ClTB::ButtCount() const
{
    return toolbar ? int(toolbar->actions().size()) : 0;
}

ToolbarButtonSnapshot* ClTB::Button(int index)
{
    return index >= 1 && index <= DefButtCount() ? &design[size_t(index) - 1].snapshot : nullptr;
}

bool ClTB::IndexFromPosition(int position, int& index) const
{
    if (position < 1 || position > ButtCount())
        return false;
    const QAction* action = toolbar->actions().at(position - 1);
    const auto found = std::ranges::find(design, action, &DesignButton::action);
    index = found == design.end() ? SeparatorIndex : int(found - design.begin()) + 1;
    return true;
}

ToolbarOrder ClTB::Order() const
{
    ToolbarOrder order;
    for (int position = 1; position <= ButtCount(); ++position) {
        int index = SeparatorIndex;
        IndexFromPosition(position, index);
        order.push_back(index);
    }
    return order;
}

// ---------------------------------------------------------------- the store

void ClTB::SaveToReg()
{
    const char* key = UseDefaults ? ToolbarStore::DefaultToolbarKey : ToolbarStore::CustomToolbarKey;
    UseDefaults = false;
    const ToolbarStore store(ApplicationName, SectionName);
    store.setValue(key, FormatOrder(Order()));
    store.setNumber(ToolbarStore::NoTextKey, NoText);
    store.setNumber(ToolbarStore::LargeIconsKey, LargeIcons);
}

void ClTB::LoadTBFromReg()
{
    const char* key = UseDefaults ? ToolbarStore::DefaultToolbarKey : ToolbarStore::CustomToolbarKey;
    UseDefaults = false;
    const ToolbarStore store(ApplicationName, SectionName);
    const std::optional<ToolbarOrder> stored = ParseOrder(store.value(key), DefButtCount());
    if (stored) {
        ShowOrder(*stored);
        return;
    }
    // The store has no usable order.
    ToolbarOrder designed;
    for (int index = 1; index <= DefButtCount(); ++index)
        designed.push_back(index);
    ShowOrder(designed);
}

void ClTB::LoadDefs()
{
    UseDefaults = true;
    LoadTBFromReg();
}

// ---------------------------------------------------------------- the toolbar

void ClTB::ClearButtons()
{
    for (QAction* action : toolbar->actions()) {
        toolbar->removeAction(action);
        const bool isOfDesign = std::ranges::find(design, action, &DesignButton::action) != design.end();
        if (!isOfDesign)
            delete action;
    }
}

void ClTB::ShowOrder(const ToolbarOrder& order)
{
    const PaintingStopped stopped(*toolbar);
    applyLook();
    ClearButtons();
    for (const int index : order) {
        if (index == SeparatorIndex)
            AddSeparator();
        else if (Button(index))
            addButton(design[size_t(index) - 1]);
    }
}

void ClTB::AddSeparator()
{
    toolbar->addSeparator();
}

void ClTB::addButton(const DesignButton& button)
{
    toolbar->addAction(button.action);
    restore(button);
    QWidget* widget = toolbar->widgetForAction(button.action);
    if (button.snapshot.BWidth > 0)
        widget->setFixedWidth(button.snapshot.BWidth);
    // Tab reaches the button, but a click leaves the focus, and thus the selection, in the display.
    if (button.snapshot.BStyle != ToolbarButtonStyle::Separator)
        widget->setFocusPolicy(Qt::TabFocus);
}

void ClTB::restore(const DesignButton& button) const
{
    const ToolbarButtonSnapshot& snapshot = button.snapshot;
    QAction& action = *button.action;
    action.setStatusTip(snapshot.BDescript);
    action.setEnabled(snapshot.BEnabled);
    if (const QIcon picture = pictureOf(snapshot.BImage); !picture.isNull())
        action.setIcon(picture);
    action.setData(snapshot.BTag);
    action.setToolTip(snapshot.BTooltip);
    action.setChecked(snapshot.BValue);
    action.setVisible(snapshot.BVisible);
    RestoreMenu(action.menu(), snapshot.Buttmnu);
    // Without labels the toolbar does not draw the caption; screen readers still need it.
    action.setText(snapshot.BCaption);
}

void ClTB::applyLook()
{
    const QSize size = LargeIcons == On ? TBImagesL.size : TBImages.size;
    if (size.isValid())
        toolbar->setIconSize(size);
    toolbar->setToolButtonStyle(NoText == On ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
}

QIcon ClTB::pictureOf(int image) const
{
    const bool large = LargeIcons == On;
    const QIcon normal = ImageAt(large ? TBImagesL : TBImages, image);
    if (normal.isNull())
        return {};
    return QIcon(new ThreeLooks(normal, ImageAt(large ? TBHotImagesL : TBHotImages, image),
                                ImageAt(large ? TBDisImagesL : TBDisImages, image)));
}

} // namespace vmk
