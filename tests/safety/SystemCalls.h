#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The system calls of this process that change files: made to fail on request, and recorded. Works by
/// defining these functions in the test program, in front of those of the C library.
namespace vmk::calls {

/// Only calls on paths that contain `inside`, and not `outside` if that is not empty, are watched.
struct Watch
{
    std::string inside;
    std::string outside;
};

/// How a call fails.
struct Failure
{
    int number = 0; ///< which of the watched calls fails, from 1; 0 for none
    int error = 0; ///< its `errno`
    bool isShort = false; ///< A write first writes half of its bytes.
    bool isLasting = false; ///< All later calls of the same kind fail too.
};

/// Starts watching: counts from 1 again.
void Begin(Watch watch, Failure failure = {});
/// Ends watching. Returns the call that failed: its name and path; empty if there were not as many calls.
std::string End();

/// A successful call.
struct Call
{
    enum Kind
    {
        Create, ///< a new entry `path` of the file `file`
        Write, ///< `data` at the end of `file`
        Truncate, ///< `file` to the length `length`
        Rename, ///< `path` to `other`
        Link, ///< `other` is a further entry of the file `file`
        Unlink, ///< `path`
        SyncFile, ///< the content of `file`
        SyncFolder ///< the entries of the folder `path`
    };
    Kind kind;
    std::uint64_t file = 0; ///< inode
    std::string path;
    std::string other;
    std::string data;
    std::uint64_t length = 0;
};

/// The successful watched calls since `Begin`, in order.
[[nodiscard]] const std::vector<Call>& Recorded();

} // namespace vmk::calls
