#include "EscapeKey.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWindow>

#include <deque>
#include <utility>

QT_BEGIN_NAMESPACE
// Declared by the toolkit for its test library.
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* receiver, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers, const QString& text,
                                               bool isAutoRepeat, ushort count);
QT_END_NAMESPACE

namespace vmk {

namespace {

/// The treatment of an event while a watch handles events.
enum class Treatment
{
    Deliver,
    Keep,
    Refuse, ///< Its data is not valid later.
    Accept, ///< A shortcut must not take the key, which follows.
    Repeat ///< The system raises it again.
};

Treatment TreatmentOf(QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::NativeGesture:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::FocusAboutToChange:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::ActivationChange:
    case QEvent::ApplicationStateChange:
    case QEvent::Close:
        return Treatment::Keep;
    case QEvent::ShortcutOverride:
        return Treatment::Accept;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return Treatment::Refuse;
    case QEvent::Timer:
    case QEvent::SockAct:
        return Treatment::Repeat;
    default:
        return Treatment::Deliver;
    }
}

bool IsKey(const QEvent& event)
{
    return event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease;
}

bool IsEscape(const QEvent& event)
{
    return IsKey(event) && static_cast<const QKeyEvent&>(event).key() == Qt::Key_Escape;
}

/// Gives a kept key to a shortcut first, as the toolkit does with keys of the window system.
/// \return true if there was one
bool IsShortcut(const QEvent& event)
{
    QObject* focus = QGuiApplication::focusObject();
    if (event.type() != QEvent::KeyPress || !focus)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return qt_sendShortcutOverrideEvent(focus, ulong(key.timestamp()), key.key(), key.modifiers(), key.text(),
                                        key.isAutoRepeat(), ushort(key.count()));
}

/// Keeps the input of the program during watches, and delivers it afterwards.
class InputKeeper final : public QObject
{
public:
    static InputKeeper& Instance()
    {
        static QPointer<InputKeeper> instance;
        if (!instance)
            instance = new InputKeeper(qApp);
        return *instance;
    }

    void beginWatch()
    {
        if (watches++ == 0)
            qApp->installEventFilter(this);
    }

    void endWatch()
    {
        if (--watches > 0)
            return;
        if (kept.empty())
            qApp->removeEventFilter(this);
        else
            deliverLater();
    }

    bool takeEscape()
    {
        // Keys that the window system has delivered together with the event being handled are in a queue,
        // which is read only after a wake-up. One call may handle only a part of what is waiting.
        constexpr int MostCalls = 10;
        QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
        dispatcher->wakeUp();
        isLooking = true;
        for (int i = 0; i < MostCalls && dispatcher->processEvents(QEventLoop::ExcludeSocketNotifiers); ++i) {
        }
        isLooking = false;
        return std::exchange(escapePressed, false);
    }

    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        deliverNext();
        return true;
    }

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (isLooking)
            return treat(receiver, *event);
        // New input comes after the kept one, except that of a window that a kept key has opened.
        const bool isLater = watches == 0 && deliveries == 0 && !kept.empty() && event->spontaneous();
        const Treatment treatment = TreatmentOf(event->type());
        if (isLater && (treatment == Treatment::Keep || treatment == Treatment::Accept))
            return treat(receiver, *event);
        return false;
    }

private:
    struct KeptEvent
    {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };

    using QObject::QObject;

    /// \return true if the event must not be delivered now
    bool treat(QObject* receiver, QEvent& event)
    {
        switch (TreatmentOf(event.type())) {
        case Treatment::Deliver:
            return false;
        case Treatment::Repeat:
            return true;
        case Treatment::Refuse:
            event.ignore();
            return true;
        case Treatment::Accept:
            event.accept();
            return true;
        case Treatment::Keep:
            break;
        }
        if (isLooking && IsEscape(event)) {
            escapePressed = escapePressed || event.type() == QEvent::KeyPress;
            return true;
        }
        kept.push_back({receiver, std::unique_ptr<QEvent>(event.clone())});
        if (event.type() == QEvent::Close)
            event.ignore();
        return true;
    }

    void deliverLater() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    void deliverNext()
    {
        // The end of the watch continues.
        if (watches > 0 || kept.empty())
            return;
        KeptEvent next = std::move(kept.front());
        kept.pop_front();
        // A box that the event opens must not stop the rest.
        if (!kept.empty())
            deliverLater();
        QObject* receiver = next.receiver;
        if (receiver && receiver->isWindowType() && IsKey(*next.event) && QGuiApplication::focusWindow())
            receiver = QGuiApplication::focusWindow();
        ++deliveries;
        if (receiver && !IsShortcut(*next.event))
            QCoreApplication::sendEvent(receiver, next.event.get());
        --deliveries;
        if (kept.empty() && watches == 0)
            qApp->removeEventFilter(this);
    }

    std::deque<KeptEvent> kept;
    int watches = 0;
    int deliveries = 0; ///< Kept events that are being delivered, within each other.
    bool isLooking = false;
    bool escapePressed = false;
};

class EscapeKeyWatch final : public EscapeWatch
{
public:
    EscapeKeyWatch() { InputKeeper::Instance().beginWatch(); }
    EscapeKeyWatch(const EscapeKeyWatch&) = delete;
    EscapeKeyWatch& operator=(const EscapeKeyWatch&) = delete;
    ~EscapeKeyWatch() override { InputKeeper::Instance().endWatch(); }
    bool takeEscape() override { return InputKeeper::Instance().takeEscape(); }
};

} // namespace

std::unique_ptr<EscapeWatch> WatchEscapeKey()
{
    return std::make_unique<EscapeKeyWatch>();
}

} // namespace vmk
