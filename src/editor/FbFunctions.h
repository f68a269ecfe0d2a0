#pragma once

#include <QString>

#include <string_view>

/// Loading, validating and reading a book in the main window.
namespace vmk {

/// Loads a book into the display. The page is complete only later: the display's events finish the load.
/// \param opening  the book comes from the command line: clears the temporary folder first and activates the
///                 window
/// \return false if the book was refused; status and sound have reported the reason
bool LoadBook(const QString& path, bool opening);

/// Shows a page in the display as the page of a book. Its text and its binary part are already in the
/// variables of the open book. \return false if the page could not be written to the temporary folder; the
/// old page stays
bool ShowPageOfBook(const QString& path, std::string_view page);

/// Deletes the display's files and the whole temporary folder; with `remake`, creates an empty one.
void RemoveDisplayFiles(bool remake);

/// Returns true if the page is blank and not higher than the window. A higher page is not examined.
[[nodiscard]] bool IsDisplayBlank();

/// Returns true if the display must not navigate to `url`: only `DisplayFile` is allowed. Reports the refusal
/// unless `SkipNavigationCheck` is set.
[[nodiscard]] bool CheckNavigation(const QString& url);

/// Opens a copy of the book in the system's reader for such files.
void ShowFb2TextPreview();

/// Validates the displayed text, reports the result, and moves the selection to the error.
void ValidateDisplay();

} // namespace vmk
