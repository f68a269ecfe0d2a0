#pragma once

#include "ToolForm.h"

#include <functional>
#include <string>
#include <vector>

class QListWidget;

namespace vmk {

/// Lists the start tags of the book's `binary` elements. A click on the tag of a picture, or Enter, shows the
/// picture. Closing the form removes `TempImagesFolder`.
class BinaryListF : public ToolForm
{
    Q_OBJECT

public:
    BinaryListF();

    /// Fills the list from `BinaryPart` and shows the form. Does nothing if the book has no element.
    void GetBinaryTags();
    /// Must be called when `BinaryPart` has changed: an open list shows its elements.
    void BinaryPartChanged();
    /// Shows the picture whose id begins with `id`; ignores other content.
    /// \param id  in the encoding of `BinaryPart`
    void ExtractAndShowImage(const std::string& id);

    QListWidget* TagListF = nullptr;

protected:
    void Form_Unload() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void TagListF_Click();
    /// Fills the list from `BinaryPart`.
    /// \param progress  receives the number of each element before it is read, and the number after the last
    /// one
    void fillList(const std::function<void(qsizetype)>& progress);

    /// The bytes of the tags in `BinaryPart`, one for each line of the list.
    std::vector<std::string> tags;
};

} // namespace vmk
