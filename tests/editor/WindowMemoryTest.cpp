#include "WindowTest.h"

#include "BinaryListF.h"
#include "Pictures.h"

#include <QListWidget>

#include <malloc.h>

#include <string>

/// A window that is opened again and again needs no further memory.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class WindowMemory : public WindowTest
{
protected:
    void SetUp() override
    {
#ifdef __SANITIZE_ADDRESS__
        GTEST_SKIP() << "the memory is not counted with a sanitizer";
#else
        std::string book = SmallBook;
        book.insert(book.rfind("</FictionBook>"), Binary("a.png", SmallPng()));
        OpenBook(book);
#endif
    }

    /// Opens a window and closes all windows.
    void OpenAndClose(const std::function<void()>& open)
    {
        open();
        QCoreApplication::processEvents();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window != form.get())
                window->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    void ExpectNoGrowth(const char* name, const std::function<void()>& open)
    {
        constexpr int First = 20; // they fill caches
        constexpr int More = 30;
        // The toolkit and the platform without a display keep up to 300.
        constexpr double MostBytes = 2'500;
        for (int i = 0; i < First; ++i)
            OpenAndClose(open);
        const auto before = double(mallinfo2().uordblks);
        const auto widgets = QApplication::allWidgets().size();
        for (int i = 0; i < More; ++i)
            OpenAndClose(open);
        EXPECT_LT((double(mallinfo2().uordblks) - before) / More, MostBytes) << name;
        EXPECT_EQ(QApplication::allWidgets().size(), widgets) << name;
    }
};

TEST_F(WindowMemory, WindowsThatAreOpenedAgainNeedNoFurtherMemory)
{
    const auto byCommand = [this](Command command) { return [this, command] { form->RunCommand(command); }; };
    ExpectNoGrowth("picture", [this] {
        form->RunCommand(Command::ShowBinaryList);
        auto& list = InstanceOf<BinaryListF>();
        list.TagListF->setCurrentRow(0);
        QTest::keyClick(&list, Qt::Key_Return);
    });
    ExpectNoGrowth("settings", byCommand(Command::Settings));
    ExpectNoGrowth("toolbar", byCommand(Command::Toolbar));
    ExpectNoGrowth("about", byCommand(Command::About));
    ExpectNoGrowth("symbols", byCommand(Command::InsertSpecialSymbols));
    ExpectNoGrowth("tags", byCommand(Command::InsertTags));
    ExpectNoGrowth("schema", byCommand(Command::ShowSchema));
    ExpectNoGrowth("find", [this] { form->Entry("uFindReplace")->trigger(); });
    ExpectNoGrowth("cleaner", [this] { form->Entry("uBookCleaner")->trigger(); });
}

} // namespace
} // namespace vmk
