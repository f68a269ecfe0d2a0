// Extraction of all images of a book with 5 000 pictures of 20 KB, against `base64 -d` over the same data
// with its output written to the same files by `split`. One process of ours; for the other side the two
// programs in one pipe. Turn by turn in one run.

#include "Base64.h"
#include "ProgramTiming.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using vmk::bench::Measure;

constexpr int Pictures = 5000;
/// A multiple of 3, so that the texts can be joined.
constexpr size_t PictureBytes = 20'001;
constexpr int Rounds = 7;
constexpr double RatioWanted = 1.5;

std::string Random(std::mt19937& random, size_t size)
{
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = char(random());
    return bytes;
}

void WriteInput(const fs::path& folder)
{
    std::mt19937 random(1);
    std::ofstream book(folder / "book.fb2", std::ios::binary);
    std::ofstream data(folder / "data.b64", std::ios::binary);
    book << "<?xml version=\"1.0\" encoding=\"utf-8\"?><FictionBook><body/>";
    for (int i = 0; i < Pictures; ++i) {
        const std::string text = vmk::Base64Encode(Random(random, PictureBytes));
        book << "<binary content-type=\"image/png\" id=\"picture" << i << ".png\">" << text
             << "</binary>\r\n";
        data << text;
    }
    book << "</FictionBook>";
}

Measure RunFresh(const std::vector<std::string>& command, const fs::path& target)
{
    fs::remove_all(target);
    fs::create_directory(target);
    return vmk::bench::Run(command, "/dev/null");
}

} // namespace

int main()
{
    const fs::path vmk = fs::path(VMK_BIN_DIR) / "vmk";
    const fs::path folder = fs::temp_directory_path() / ("bench_images." + std::to_string(getpid()));
    fs::create_directory(folder);
    WriteInput(folder);

    const std::string pipe = "base64 -d '" + (folder / "data.b64").string() + "' | split -a 4 -b "
        + std::to_string(PictureBytes) + " - '" + (folder / "theirs").string() + "/x'";
    std::vector<Measure> ours;
    std::vector<Measure> theirs;
    for (int round = 0; round < Rounds; ++round) {
        theirs.push_back(RunFresh({"sh", "-c", pipe}, folder / "theirs"));
        ours.push_back(
            RunFresh({vmk, "images", folder / "book.fb2", "--out", folder / "ours"}, folder / "ours"));
    }
    const auto count = std::distance(fs::directory_iterator(folder / "ours"), fs::directory_iterator());
    fs::remove_all(folder);

    const double own = vmk::bench::Middle(ours).seconds;
    const double other = vmk::bench::Middle(theirs).seconds;
    const double ratio = own / other;
    std::printf("%d pictures of %zu bytes, medians of %d rounds taken in turn\n", Pictures, PictureBytes,
                Rounds);
    std::printf("extract: vmk %.0f ms, base64 -d and split %.0f ms, ratio %.2f (at most %.1f wanted)\n",
                own * 1000, other * 1000, ratio, RatioWanted);
    return count == Pictures && ratio <= RatioWanted ? 0 : 1;
}
