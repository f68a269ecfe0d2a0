#pragma once

#include "ToolForm.h"

#include <string>
#include <vector>

class QListWidget;

namespace vmk {

/// The list of the book's `binary` elements by their start tags. A click on a picture's tag, or Enter, shows
/// the picture. Closing the form removes `TempImagesFolder`.
class BinaryListF : public ToolForm
{
    Q_OBJECT

public:
    BinaryListF();

    /// Fills the list from `BinaryPart` and shows the form, unless there is nothing to list.
    void GetBinaryTags();
    /// Shows the picture whose id begins with `id`, given in the bytes of `BinaryPart`; does nothing for
    /// other content.
    void ExtractAndShowImage(const std::string& id);

    QListWidget* TagListF = nullptr;

protected:
    void Form_Unload() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void TagListF_Click();

    /// The tags as they are in `BinaryPart`, one for each line of the list.
    std::vector<std::string> tags;
};

} // namespace vmk
