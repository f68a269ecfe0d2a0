#pragma once

/// What a process has to settle once, first thing in `main`, before it opens its first file.
namespace vmk {

/// Fills the standard handles that the caller has closed. Otherwise the next file opened would get such a
/// handle's number, and what is printed would go into a book. What is written to a handle filled here fails.
void HoldStandardHandles();

/// Lets a write beyond the limit on the size of files fail like any other, in place of ending the process.
void SurviveFileSizeLimit();

/// The same for a write into a pipe that nobody reads any more.
void SurviveBrokenPipes();

} // namespace vmk
