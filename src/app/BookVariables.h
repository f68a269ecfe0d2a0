#pragma once

#include <QString>

#include <cstdint>
#include <string>

/// Shared variables of the open book. Reset by each load, never saved.
namespace vmk {

/// The full path of the open book; empty before the first load.
extern QString CurrentBook;
/// The displayed page file: one of the two `Fb2SourceHtml` files.
extern QString DisplayFile;
/// The book's `binary` elements, which are stored separately from the page between load and save.
extern std::string BinaryPart;
/// The code page of `BinaryPart`.
extern int32_t BinaryCodePage;
/// The book is read and saved without losses. False if the user chose the editor's own rules, which join
/// lines and split text next to elements that they do not know.
extern bool BookKeepsText;

/// The encoding in which the book is read, including an override in the settings.
extern std::string WorkEncodingName;
extern int32_t WorkCodePage;
extern std::string WorkMetaTag;
/// The encoding that the file declares.
extern std::string FileEncodingName;
extern int32_t FileCodePage;
extern std::string FileMetaTag;
/// The declaration at the beginning of the display.
extern std::string XmlDeclaration;
/// The book contains decimal character references, so that it is converted a second time.
extern bool BookHasCharRefs;
/// Set at the start of a validation against a schema.
extern QString FbNamespace;
/// The last conversion refused the book because of its binary part.
extern bool BadBinaryPart;
/// Set before the program itself navigates; cleared by the navigation event.
extern bool LoadingByProgram;
/// Suppresses the report of a refused navigation once.
extern bool SkipNavigationCheck;
/// A validation from the command line failed: the display is validated as soon as it is complete.
extern bool ValidateAfterLoad;
/// The number of undo steps of the last edit; 0 when a document becomes complete.
extern int32_t UndoSteps;
/// True from the completion of the document until the first edit.
extern bool BookUnchanged;

} // namespace vmk
