#include "BookVariables.h"

namespace vmk {

QString CurrentBook;
QString DisplayFile;
std::string BinaryPart;
int32_t BinaryCodePage = 1251;
bool BookKeepsText = false;
std::string WorkEncodingName;
int32_t WorkCodePage = 1251;
std::string WorkMetaTag;
std::string FileEncodingName;
int32_t FileCodePage = 1251;
std::string FileMetaTag;
std::string XmlDeclaration;
bool BookHasCharRefs = false;
QString FbNamespace;
bool BadBinaryPart = false;
bool LoadingByProgram = false;
bool SkipNavigationCheck = false;
bool ValidateAfterLoad = false;
int32_t UndoSteps = 0;
bool BookUnchanged = true;

} // namespace vmk
