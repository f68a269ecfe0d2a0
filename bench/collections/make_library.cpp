// Writes a library of generated books, each different, in folders of 1000.

#include "BookGenerator.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

int main(int count, char** values)
{
    if (count != 4) {
        std::fputs("usage: make_library FOLDER BOOKS BYTES\n"
                   "Writes BOOKS valid books of about BYTES bytes below FOLDER.\n",
                   stderr);
        return 2;
    }
    const std::filesystem::path folder = values[1];
    const auto books = static_cast<uint32_t>(std::strtoul(values[2], nullptr, 10));
    const size_t size = std::strtoul(values[3], nullptr, 10);
    constexpr uint32_t InFolder = 1000;
    for (uint32_t i = 0; i < books; ++i) {
        const std::filesystem::path inner = folder / std::to_string(i / InFolder);
        if (i % InFolder == 0)
            std::filesystem::create_directories(inner);
        const std::string book = vmk::MakeBook({.size = size, .seed = i + 1, .pictures = false});
        std::ofstream file(inner / (std::to_string(i) + ".fb2"), std::ios::binary);
        if (!(file << book).flush()) {
            std::perror("make_library");
            return 1;
        }
    }
    return 0;
}
