#include "PreviewPage.h"

#include "BookToDisplay.h"
#include "FileOperations.h"
#include "StartUpVariables.h"

namespace vmk {

using namespace Qt::StringLiterals;

QString SampleBookFile()
{
    return OfficeFolder + u"/SampleForPreview.fb2"_s;
}

QString SamplePageFile()
{
    return OfficeFolder + u"/SampleForPreview.htm"_s;
}

bool MakeSamplePage(std::string& page)
{
    page = ReadFileText(SampleBookFile());
    return ConvertBookToDisplay(page, true);
}

} // namespace vmk
