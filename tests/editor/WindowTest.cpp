#include "WindowTest.h"

#include "FbFunctions.h"
#include "SaveBook.h"

namespace vmk {

void WindowTest::OpenBook(std::string_view text)
{
    Open();
    LoadAndWait(MakeBook(text));
}

void WindowTest::LoadAndWait(const QString& path)
{
    soundNames.clear();
    ASSERT_TRUE(LoadBook(path, false));
    ASSERT_TRUE(WaitFor([this] { return Message().startsWith(QStringLiteral("document complete")); }))
        << Message().toStdString();
    View().setFocus();
}

} // namespace vmk
