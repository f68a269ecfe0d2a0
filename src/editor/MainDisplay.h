#pragma once

#include "DisplayView.h"
#include "Form1.h"

namespace vmk {

/// Returns the display of the main window, which must exist.
[[nodiscard]] inline DisplayView& MainDisplay()
{
    return *Form1::Instance()->HTMLread;
}

/// Returns the document of the open book.
[[nodiscard]] inline DisplayDocument& FileDoc()
{
    return MainDisplay().document();
}

} // namespace vmk
