#include "SelectionTransfer.h"

#ifdef VMK_XCB

#include "Cancelling.h"

#include <QByteArray>

#include <poll.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string_view>

namespace vmk {

namespace {

/// The time without a sign of life after which a program does not respond.
constexpr std::chrono::milliseconds Patience(3000);
/// The time between two looks at the Escape key.
constexpr int LookMilliseconds = 10;

struct Freed
{
    void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, Freed>;

/// A separate connection to the X server, so that nothing waits for the events of the toolkit, and the window
/// that receives a text.
class Receiver
{
public:
    Receiver()
        : connection(xcb_connect(nullptr, &screenNumber))
    {
        if (!isConnected())
            return;
        xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
        for (; screenNumber > 0 && screens.rem > 1; --screenNumber)
            xcb_screen_next(&screens);
        window = xcb_generate_id(connection);
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screens.data->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        utf8 = atom("UTF8_STRING");
        incremental = atom("INCR");
        property = atom("VMK_TRANSFER");
    }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    ~Receiver() { xcb_disconnect(connection); }

    [[nodiscard]] TransferredText receive(SharedText which)
    {
        const xcb_atom_t selection
            = which == SharedText::Primary ? xcb_atom_t(XCB_ATOM_PRIMARY) : atom("CLIPBOARD");
        if (!isConnected() || !hasOwner(selection))
            return {};
        xcb_convert_selection(connection, window, selection, utf8, property, XCB_CURRENT_TIME);
        if (!waitFor(XCB_SELECTION_NOTIFY))
            return {end, {}};
        if (reinterpret_cast<const xcb_selection_notify_event_t&>(*event).property == XCB_NONE)
            return {};
        const Reply<xcb_get_property_reply_t> whole = takeProperty();
        if (!whole || (whole->type != utf8 && whole->type != incremental))
            return {};
        if (whole->type == utf8)
            append(*whole);
        else if (!receivePieces())
            return {end, {}};
        // Some programs pass the end of their string too.
        if (bytes.endsWith('\0'))
            bytes.chop(1);
        return {TransferEnd::Complete, QString::fromUtf8(bytes)};
    }

private:
    [[nodiscard]] bool isConnected() const { return xcb_connection_has_error(connection) == 0; }

    [[nodiscard]] xcb_atom_t atom(std::string_view name)
    {
        const auto request = xcb_intern_atom(connection, 0, std::uint16_t(name.size()), name.data());
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, request, nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_NONE);
    }

    [[nodiscard]] bool hasOwner(xcb_atom_t selection)
    {
        const auto request = xcb_get_selection_owner(connection, selection);
        const Reply<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(connection, request, nullptr));
        return reply && reply->owner != XCB_NONE;
    }

    /// Returns what the other program has written, and removes it: it then writes the next piece.
    [[nodiscard]] Reply<xcb_get_property_reply_t> takeProperty()
    {
        constexpr std::uint32_t All = std::numeric_limits<std::uint32_t>::max() / 4;
        const auto request
            = xcb_get_property(connection, 1, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, All);
        return Reply<xcb_get_property_reply_t>(xcb_get_property_reply(connection, request, nullptr));
    }

    void append(const xcb_get_property_reply_t& reply)
    {
        bytes.append(static_cast<const char*>(xcb_get_property_value(&reply)),
                     xcb_get_property_value_length(&reply));
    }

    /// Receives a long text up to its end: an empty piece.
    [[nodiscard]] bool receivePieces()
    {
        for (;;) {
            if (!waitFor(XCB_PROPERTY_NOTIFY))
                return false;
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
            if (change.atom != property || change.state != XCB_PROPERTY_NEW_VALUE)
                continue;
            const Reply<xcb_get_property_reply_t> piece = takeProperty();
            // It is the event of the announcement, which has been removed already.
            if (!piece || piece->type == XCB_NONE)
                continue;
            if (xcb_get_property_value_length(piece.get()) == 0)
                return true;
            append(*piece);
        }
    }

    /// Waits for an event of a type. Returns false if it does not come; `end` is the reason.
    [[nodiscard]] bool waitFor(std::uint8_t type)
    {
        constexpr std::uint8_t SentByProgram = 0x80;
        xcb_flush(connection);
        const auto deadline = std::chrono::steady_clock::now() + Patience;
        end = TransferEnd::NoAnswer;
        while (isConnected()) {
            event.reset(xcb_poll_for_event(connection));
            if (event && (event->response_type & ~SentByProgram) == type)
                return true;
            if (CancellableWork::isCancelled()) {
                end = TransferEnd::Cancelled;
                return false;
            }
            if (event)
                continue;
            if (std::chrono::steady_clock::now() >= deadline)
                return false;
            pollfd input{xcb_get_file_descriptor(connection), POLLIN, 0};
            static_cast<void>(::poll(&input, 1, LookMilliseconds));
        }
        return false;
    }

    int screenNumber = 0;
    xcb_connection_t* connection;
    xcb_window_t window = XCB_NONE;
    xcb_atom_t utf8 = XCB_NONE;
    xcb_atom_t incremental = XCB_NONE;
    xcb_atom_t property = XCB_NONE;
    Reply<xcb_generic_event_t> event; ///< of the last `waitFor`
    TransferEnd end = TransferEnd::NoAnswer;
    QByteArray bytes;
};

} // namespace

TransferredText TransferText(SharedText which)
{
    return Receiver().receive(which);
}

} // namespace vmk

#else

vmk::TransferredText vmk::TransferText(SharedText)
{
    return {};
}

#endif
