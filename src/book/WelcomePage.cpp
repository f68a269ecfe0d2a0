#include "WelcomePage.h"

#include "BookSeams.h"
#include "CodePages.h"
#include "FileOperations.h"
#include "StartUpVariables.h"

namespace vmk {

std::string WelcomePageBytes()
{
    // The page has one line end, after the start tag of its body.
    const QStringView page
        = uR"(<HTML><meta content="text/html; charset=windows-1251" http-equiv="Content-Type">)"
          uR"(<BODY STYLE="font-family: Tahoma; font-size:10pt; font-weight:bold; color:blue; )"
          uR"(margin-top:60px; margin-left:2px; margin-right:2px">)"
          u"\r\n"
          uR"(<H2 align=center><FONT STYLE="font-size:18pt; color:black">Vellumark</FONT></H2>)"
          uR"(<DIV align=center><FONT STYLE="font-size:11pt; color:black">)"
          u"Программа для редактирования и валидации книг в формате Fiction Book</FONT></DIV><BR>"
          u"<DIV align=center>Если Вы знакомы с программой - загружайте файл и начинайте работать</DIV><BR>"
          u"<DIV align=center>Если не знакомы - нажимайте F3, загружайте файлы в порядке их нумерации "
          u"и следуйте инструкциям красного цвета</DIV>"
          uR"(<BR><BR><BR><H2 align=center><FONT STYLE="font-size:14pt; color:red">)"
          u"!!!БУДЬТЕ БДИТЕЛЬНЫ - ВМК НЕ ДРЕМЛЕТ!!!</FONT></H2></BODY></HTML>";
    return EncodeText(page, CodePageCyrillic);
}

void ShowWelcomePage()
{
    FileOperation(DeleteFileMode, WelcomeFile);
    // If nothing can be written, the display shows an empty page.
    (void)WriteScratchFile(WelcomeFile, WelcomePageBytes());
    NavigateSeam()(WelcomeFile, false);
}

} // namespace vmk
