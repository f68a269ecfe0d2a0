#pragma once

#include <QLabel>
#include <QWidget>

#include <vector>

namespace vmk {

/// A status bar with several panels. Panels are counted from 1; widths are in twips.
class PanelBar : public QWidget
{
    Q_OBJECT

public:
    /// Creates one panel per name. Screen readers read the name of a panel.
    PanelBar(const QStringList& names, QWidget* parent);

    /// Follows a change of the desktop's font.
    void takeDesktopFont();
    /// Sets the text of a panel. A text wider than the panel is elided; the tool tip then shows all of it.
    void setPanelText(int panel, const QString& text);
    [[nodiscard]] QString panelText(int panel) const;
    void setPanelWidth(int panel, float twips);
    [[nodiscard]] float panelWidth(int panel) const;
    /// Clears every panel.
    void clear();

Q_SIGNALS:
    /// Local files were dropped on the bar, in this order.
    void filesDropped(const QStringList& paths);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct Panel
    {
        QLabel* label;
        float twips;
    };

    void placePanels();

    std::vector<Panel> panels;
};

} // namespace vmk
