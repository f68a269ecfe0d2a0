// A program that owns the clipboard of X11 and passes its text in an unusual way.
//
//   clipboard_owner silent        answers no request
//   clipboard_owner once TEXT     passes the text as a whole, with a final NUL
//   clipboard_owner slow TEXT     passes one byte every 0.3 seconds
//   clipboard_owner endless TEXT  passes the text again and again
//   clipboard_owner stops TEXT    passes the text and does not end it
//   clipboard_owner latin TEXT    has the text in Latin-1 only
//
// Prints "ready" when it owns the clipboard.

#include <xcb/xcb.h>

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace {

class Owner
{
public:
    Owner(std::string_view behaviour, std::string_view ownedText)
        : mode(behaviour)
        , text(ownedText)
    {
        if (mode == "once")
            text += '\0';
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        const xcb_window_t window = xcb_generate_id(connection);
        xcb_create_window(connection, 0, window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0,
                          0, nullptr);
        const xcb_atom_t clipboard = atom("CLIPBOARD");
        xcb_set_selection_owner(connection, window, clipboard, XCB_CURRENT_TIME);
        std::free(xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, clipboard),
                                                nullptr));
        std::puts("ready");
        std::fflush(stdout);
    }

    void run()
    {
        if (mode == "silent")
            ::pause();
        while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
            const int type = event->response_type & 0x7f;
            if (type == XCB_SELECTION_REQUEST)
                answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
            else if (type == XCB_PROPERTY_NOTIFY)
                passNext(reinterpret_cast<const xcb_property_notify_event_t&>(*event));
            std::free(event);
        }
    }

private:
    xcb_atom_t atom(std::string_view name)
    {
        const auto request = xcb_intern_atom(connection, 0, std::uint16_t(name.size()), name.data());
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, request, nullptr);
        const xcb_atom_t result = reply->atom;
        std::free(reply);
        return result;
    }

    template <typename T>
    void write(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, const T* values, std::size_t count)
    {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, name, type, 8 * sizeof(T),
                            std::uint32_t(count), values);
    }

    void answer(const xcb_selection_request_event_t& request)
    {
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.time = request.time;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = request.property;
        const xcb_atom_t offered = mode == "latin" ? xcb_atom_t(XCB_ATOM_STRING) : utf8;
        if (request.target == targets) {
            const std::array<xcb_atom_t, 2> all = {targets, offered};
            write(request.requestor, request.property, XCB_ATOM_ATOM, all.data(), all.size());
        } else if (request.target != offered) {
            notice.property = XCB_NONE;
        } else if (mode == "once" || mode == "latin") {
            write(request.requestor, request.property, offered, text.data(), text.size());
        } else {
            const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(connection, request.requestor, XCB_CW_EVENT_MASK, &events);
            const auto size = std::uint32_t(text.size());
            passed = 0;
            property = request.property;
            write(request.requestor, property, atom("INCR"), &size, 1);
        }
        xcb_send_event(connection, 0, request.requestor, 0, reinterpret_cast<const char*>(&notice));
        xcb_flush(connection);
    }

    /// The receiver has removed a piece and expects the next one.
    void passNext(const xcb_property_notify_event_t& change)
    {
        if (change.state != XCB_PROPERTY_DELETE || change.atom != property)
            return;
        if (mode == "slow") {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            const std::size_t count = passed < text.size() ? 1 : 0;
            write(change.window, property, utf8, text.data() + passed, count);
            passed += count;
        } else if (mode == "endless") {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            write(change.window, property, utf8, text.data(), text.size());
        } else if (passed++ == 0) {
            write(change.window, property, utf8, text.data(), text.size());
        }
        xcb_flush(connection);
    }

    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    std::string_view mode;
    std::string text;
    xcb_atom_t targets = atom("TARGETS");
    xcb_atom_t utf8 = atom("UTF8_STRING");
    xcb_atom_t property = XCB_NONE;
    std::size_t passed = 0;
};

} // namespace

int main(int argc, char** argv)
{
    Owner(argc > 1 ? argv[1] : "silent", argc > 2 ? argv[2] : "").run();
}
