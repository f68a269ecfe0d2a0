#pragma once

#include "TestPaths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace vmk::test {

/// A real book of the folder that the build was configured with (VMK_CORPUS).
struct CorpusBook
{
    std::string name; ///< of the file, without the folder
    std::string bytes;
};

/// What a test that needs real books reports when it is skipped.
inline constexpr std::string_view NoCorpus = "no real books: configure with -DVMK_CORPUS=FOLDER";

/// The folder of the real books; empty if there is none.
inline std::string CorpusFolder()
{
    return std::filesystem::path(VMK_CORPUS_DIR).string();
}

/// All real books, sorted by name; empty without a folder.
inline const std::vector<CorpusBook>& CorpusBooks()
{
    static const std::vector<CorpusBook> books = [] {
        std::vector<CorpusBook> found;
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(CorpusFolder(), missing)) {
            if (entry.path().extension() != ".fb2")
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            found.push_back(
                {entry.path().filename().string(), std::string(std::istreambuf_iterator<char>(file), {})});
        }
        std::ranges::sort(found, {}, &CorpusBook::name);
        return found;
    }();
    return books;
}

} // namespace vmk::test
