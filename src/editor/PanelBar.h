#pragma once

#include <QLabel>
#include <QWidget>

#include <vector>

namespace vmk {

/// A status bar of panels side by side. Panels are counted from 1; widths are twips.
class PanelBar : public QWidget
{
    Q_OBJECT

public:
    /// `names` tell screen readers what each panel shows; there are as many panels as names.
    PanelBar(const QStringList& names, QWidget* parent);

    /// A text wider than its panel is shown cut short; the whole then shows as its tool tip.
    void setPanelText(int panel, const QString& text);
    [[nodiscard]] QString panelText(int panel) const;
    void setPanelWidth(int panel, float twips);
    [[nodiscard]] float panelWidth(int panel) const;
    /// Empties every panel.
    void clear();

Q_SIGNALS:
    /// Local files dropped on the bar, in the order given.
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
