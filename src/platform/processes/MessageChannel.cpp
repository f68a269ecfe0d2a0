#include "MessageChannel.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include <sys/socket.h>
#include <unistd.h>

namespace vmk {

namespace {

constexpr size_t PieceBytes = 1 << 16;
constexpr size_t KeptCapacity = 1 << 20;

/// Removes the used front of a buffer when that is cheap, and does not keep the memory of a large message.
void Compact(std::string& buffer, size_t& used)
{
    if (used < buffer.size() && used < buffer.size() / 2)
        return;
    buffer.erase(0, used);
    used = 0;
    if (buffer.size() < KeptCapacity && buffer.capacity() > 4 * KeptCapacity)
        buffer.shrink_to_fit();
}

} // namespace

MessageChannel::MessageChannel(MessageChannel&& other) noexcept
    : handle(std::exchange(other.handle, -1))
    , output(std::move(other.output))
    , written(other.written)
    , input(std::move(other.input))
    , taken(other.taken)
{
}

void MessageChannel::close()
{
    if (handle >= 0)
        ::close(std::exchange(handle, -1));
}

void MessageChannel::add(std::string_view message)
{
    const uint64_t length = message.size();
    output.append(reinterpret_cast<const char*>(&length), sizeof length);
    output.append(message);
}

bool MessageChannel::write()
{
    while (hasOutput()) {
        const ssize_t sent = ::send(handle, output.data() + written, output.size() - written, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            break;
        if (sent < 0)
            return false;
        written += static_cast<size_t>(sent);
    }
    Compact(output, written);
    return true;
}

bool MessageChannel::read()
{
    for (;;) {
        const size_t before = input.size();
        input.resize(before + PieceBytes);
        ssize_t got = 0;
        do
            got = ::recv(handle, input.data() + before, PieceBytes, 0);
        while (got < 0 && errno == EINTR);
        const bool isEmpty = got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
        input.resize(before + (got > 0 ? static_cast<size_t>(got) : 0));
        if (isEmpty)
            return true;
        if (got <= 0)
            return false;
        if (static_cast<size_t>(got) < PieceBytes)
            return true;
    }
}

std::optional<std::string> MessageChannel::take()
{
    uint64_t length = 0;
    if (input.size() - taken < sizeof length)
        return std::nullopt;
    std::memcpy(&length, input.data() + taken, sizeof length);
    if (input.size() - taken - sizeof length < length)
        return std::nullopt;
    std::string message = input.substr(taken + sizeof length, static_cast<size_t>(length));
    taken += sizeof length + static_cast<size_t>(length);
    Compact(input, taken);
    return message;
}

} // namespace vmk
