#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// Messages of any length over a socket between two processes. Owns the socket.
class MessageChannel
{
public:
    explicit MessageChannel(int socketHandle)
        : handle(socketHandle)
    {
    }
    MessageChannel(MessageChannel&& other) noexcept;
    MessageChannel& operator=(MessageChannel&&) = delete;
    ~MessageChannel() { close(); }

    [[nodiscard]] int descriptor() const { return handle; }
    void close();

    /// Appends a message to those that `write` sends.
    void add(std::string_view message);
    [[nodiscard]] bool hasOutput() const { return written < output.size(); }
    /// Sends as much as the socket takes; everything if the socket blocks. Returns false if the other process
    /// has ended.
    bool write();

    /// Receives the bytes that have arrived; waits for some if the socket blocks. Returns false at the end.
    bool read();
    /// Returns the next message that has arrived completely.
    [[nodiscard]] std::optional<std::string> take();

private:
    int handle;
    std::string output;
    size_t written = 0; // of `output`
    std::string input;
    size_t taken = 0; // of `input`
};

} // namespace vmk
