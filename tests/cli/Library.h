#pragma once

#include "ProgramRun.h"
#include "ZipBuilder.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace vmk {

/// A library of books in folders and archives, in which the tests of whole collections run the program.
class Library : public testing::Test
{
protected:
    [[nodiscard]] std::string path(const std::string& name) const
    {
        return folder.path().toStdString() + "/" + name;
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << bytes;
    }

    [[nodiscard]] std::string read(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// All files below a folder, sorted.
    [[nodiscard]] std::vector<std::string> filesBelow(const std::string& name) const
    {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path(name)))
            if (entry.is_regular_file())
                files.push_back(std::filesystem::relative(entry.path(), path(name)).string());
        std::ranges::sort(files);
        return files;
    }

    /// Runs `vmk` in the folder of the library.
    [[nodiscard]] ProgramRun vmk(const std::vector<std::string>& arguments,
                                 const std::string& input = {}) const
    {
        ProgramSetting setting;
        setting.workingFolder = folder.path().toStdString();
        setting.input = input;
        return RunProgram("vmk", arguments, setting);
    }

    /// A complete book that is valid if `section` is the content of a section.
    [[nodiscard]] static std::string book(const std::string& section = "<p>Text</p>",
                                          const std::string& rest = {})
    {
        return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
               "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\" "
               "xmlns:l=\"http://www.w3.org/1999/xlink\">\n<description><title-info><genre>sf</genre><author>"
               "<nickname>a</nickname></author><book-title>b</book-title><lang>ru</lang></title-info>"
               "<document-info><author><nickname>a</nickname></author><date>2026</date><id>i</id><version>1.0"
               "</version></document-info></description>\n<body><section>\n"
            + section + "</section></body>" + rest + "</FictionBook>\n";
    }

    /// Books without and with errors, in files, an archive, and a damaged archive.
    void makeLibrary() const
    {
        write("lib/a.fb2", book());
        write("lib/b/1.fb2", book("<x/>"));
        write("lib/b/2.fb2", book("<p>one</p>\n<p>two"));
        write("lib/c.zip",
              MakeZip({{"m.fb2", book(), true},
                       {.name = "n.fb2", .content = book(), .checksum = 1},
                       {"\x8a\xad\xa8\xa3\xa0.fb2", book("<p y='1'>word</p>"), true},
                       {"m.fb2", book("<p>again</p>"), true}}));
        write("lib/d.zip", "damaged");
        write("lib/e.fb2", book("<p>last</p>"));
    }

    static std::vector<std::string> linesOf(const std::string& text)
    {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

    QTemporaryDir folder;
};

} // namespace vmk
