#pragma once

#include <QString>

#include <string>

/// The sample book of the preview and its page.
namespace vmk {

/// Returns the path of `SampleForPreview.fb2` in the workspace. The user can replace the file.
[[nodiscard]] QString SampleBookFile();

/// Returns the path of `SampleForPreview.htm` in the workspace, the page of the sample. The file exists only
/// while the preview is open.
[[nodiscard]] QString SamplePageFile();

/// Converts the sample with the display values of `PreviewValuesSeam`. The open book, its pictures and
/// the message in the status bar are unchanged.
/// \param page  receives the page, in UTF-8.
/// \return false if the sample cannot be shown
[[nodiscard]] bool MakeSamplePage(std::string& page);

} // namespace vmk
