// A session manager for one program, by the protocol that desktops use (XSMP). It prints the value for
// SESSION_MANAGER, then obeys commands from standard input: "save" announces the end of the session, "die"
// ends it, "cancel" cancels it. It prints "client" when the program has connected and "saved" when it has
// saved its state.

#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

SmsConn client = nullptr;
bool saving = false;
std::vector<IceConn> connections;

void Say(const char* text)
{
    std::puts(text);
    std::fflush(stdout);
}

Status Register(SmsConn connection, SmPointer, char* previousId)
{
    if (previousId) {
        std::free(previousId);
        return 0;
    }
    char* id = SmsGenerateClientID(connection);
    SmsRegisterClientReply(connection, id);
    std::free(id);
    // The protocol requires it for a new client.
    SmsSaveYourself(connection, SmSaveLocal, False, SmInteractStyleNone, False);
    return 1;
}

void SaveDone(SmsConn connection, SmPointer, Bool)
{
    if (client == nullptr) {
        client = connection;
        SmsSaveComplete(connection);
        Say("client");
    } else if (saving) {
        saving = false;
        Say("saved");
    }
}

void Close(SmsConn connection, SmPointer, int count, char** reasons)
{
    SmFreeReasons(count, reasons);
    IceConn ice = SmsGetIceConnection(connection);
    SmsCleanUp(connection);
    IceSetShutdownNegotiation(ice, False);
    IceCloseConnection(ice);
    client = nullptr;
}

Status NewClient(SmsConn, SmPointer, unsigned long* mask, SmsCallbacks* callbacks, char**)
{
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask
        | SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask
        | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask
        | SmsGetPropertiesProcMask;
    callbacks->register_client.callback = Register;
    callbacks->interact_request.callback
        = [](SmsConn connection, SmPointer, int) { SmsInteract(connection); };
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {};
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {};
    callbacks->save_yourself_phase2_request.callback
        = [](SmsConn connection, SmPointer) { SmsSaveYourselfPhase2(connection); };
    callbacks->save_yourself_done.callback = SaveDone;
    callbacks->close_connection.callback = Close;
    callbacks->set_properties.callback = [](SmsConn, SmPointer, int count, SmProp** properties) {
        std::for_each(properties, properties + count, SmFreeProperty);
        std::free(properties);
    };
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int count, char** names) {
        std::for_each(names, names + count, std::free);
        std::free(names);
    };
    callbacks->get_properties.callback
        = [](SmsConn connection, SmPointer) { SmsReturnProperties(connection, 0, nullptr); };
    return 1;
}

void Watch(IceConn connection, IcePointer, Bool opening, IcePointer*)
{
    if (opening)
        connections.push_back(connection);
    else
        std::erase(connections, connection);
}

/// \return false at the end of the commands
bool Obey()
{
    std::array<char, 64> line{};
    if (!std::fgets(line.data(), int(line.size()), stdin))
        return false;
    const std::string_view command(line.data());
    if (!client)
        return true;
    if (command == "save\n") {
        saving = true;
        SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleAny, False);
    } else if (command == "die\n") {
        SmsDie(client);
    } else if (command == "cancel\n") {
        SmsShutdownCancelled(client);
    }
    return true;
}

Bool AcceptAnyHost(char*)
{
    return True;
}

} // namespace

int main()
{
    std::array<char, 256> error{};
    int count = 0;
    IceListenObj* listeners = nullptr;
    IceAddConnectionWatch(Watch, nullptr);
    if (!SmsInitialize("test", "1", NewClient, nullptr, AcceptAnyHost, int(error.size()), error.data())
        || !IceListenForConnections(&count, &listeners, int(error.size()), error.data())) {
        std::fprintf(stderr, "%s\n", error.data());
        return 1;
    }
    for (int i = 0; i < count; ++i)
        IceSetHostBasedAuthProc(listeners[i], AcceptAnyHost);
    // A connection that breaks is not an error here.
    IceSetIOErrorHandler([](IceConn) {});
    Say(IceComposeNetworkIdList(count, listeners));

    for (bool running = true; running;) {
        std::vector<pollfd> inputs = {{STDIN_FILENO, POLLIN, 0}};
        for (int i = 0; i < count; ++i)
            inputs.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
        const std::vector<IceConn> open = connections;
        for (IceConn connection : open)
            inputs.push_back({IceConnectionNumber(connection), POLLIN, 0});
        if (poll(inputs.data(), inputs.size(), -1) < 0)
            return 1;
        if (inputs[0].revents != 0)
            running = Obey();
        for (int i = 0; i < count; ++i) {
            IceAcceptStatus status = IceAcceptFailure;
            if (inputs[std::size_t(i) + 1].revents != 0)
                IceAcceptConnection(listeners[i], &status);
        }
        for (std::size_t i = 0; i < open.size(); ++i) {
            const bool isOpen
                = std::find(connections.begin(), connections.end(), open[i]) != connections.end();
            if (isOpen && inputs[i + 1 + std::size_t(count)].revents != 0
                && IceProcessMessages(open[i], nullptr, nullptr) == IceProcessMessagesIOError) {
                IceSetShutdownNegotiation(open[i], False);
                IceCloseConnection(open[i]);
                client = nullptr;
            }
        }
    }
    IceFreeListenObjs(count, listeners);
    return 0;
}
