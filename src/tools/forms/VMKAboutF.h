#pragma once

#include "ToolForm.h"

namespace vmk {

/// Name, version and licence of the program. A click or Escape closes it.
class VMKAboutF : public ToolForm
{
    Q_OBJECT

public:
    VMKAboutF();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace vmk
