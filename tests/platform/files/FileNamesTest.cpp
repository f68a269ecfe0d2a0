#include "FileNames.h"
#include "Files.h"
#include "Workplace.h"

#include <gtest/gtest.h>

#include <random>

using namespace vmk;
using namespace Qt::StringLiterals;

TEST(FileNames, NamesInUtf8AreTheirText)
{
    EXPECT_EQ(DecodeFileName("книга \xF0\x9F\x93\x96.fb2"), u"книга 📖.fb2"_s);
    EXPECT_EQ(EncodeFileName(u"книга 📖.fb2"_s), "книга \xF0\x9F\x93\x96.fb2");
}

TEST(FileNames, BytesThatAreNotUtf8AreKept)
{
    const QByteArray name("\xea\xed\xe8\xe3\xe0.fb2"); // windows-1251
    const QString text = DecodeFileName(name);
    EXPECT_EQ(text.size(), name.size());
    EXPECT_TRUE(text.endsWith(u".fb2"_s));
    EXPECT_EQ(EncodeFileName(text), name);
    EXPECT_EQ(ReadableName(text), QString(5, QChar::ReplacementCharacter) + u".fb2"_s);
}

TEST(FileNames, EverySequenceOfBytesSurvives)
{
    std::mt19937 random(7);
    constexpr std::array<unsigned char, 12> Bytes
        = {'a', 0x80, 0xbf, 0xc0, 0xd0, 0x90, 0xed, 0xa0, 0xf0, 0x9f, 0xf4, 0xff};
    for (int i = 0; i < 20'000; ++i) {
        QByteArray name;
        for (int length = int(random() % 9); length > 0; --length)
            name += char(Bytes[random() % Bytes.size()]);
        EXPECT_EQ(EncodeFileName(DecodeFileName(name)), name) << name.toHex().toStdString();
    }
}

TEST(FileNames, ATextThatNoFileCanHaveIsEmpty)
{
    EXPECT_EQ(EncodeFileName(u"a"_s + QChar(0) + u"b"_s), QByteArray());
    EXPECT_EQ(EncodeFileName(u"a"_s + QChar(0xd800)), QByteArray());
    EXPECT_EQ(EncodeFileName(QChar(0xdc7f) + u"a"_s), QByteArray());
    EXPECT_EQ(EncodeFileName(QChar(0xd800) + u"a"_s + QChar(0xdcff)), QByteArray());
}

TEST(FileNames, ACharacterOfTwoUnitsNextToSuchAByteIsNoByte)
{
    // The second unit of U+10080 alone would stand for the byte 128.
    const QByteArray bytes = QByteArray("\xf0\x90\x82\x80") + '\xea';
    const QString name = DecodeFileName(bytes);
    EXPECT_EQ(name, QString::fromUcs4(U"\U00010080") + QChar(0xdcea));
    EXPECT_EQ(EncodeFileName(name), bytes);
    EXPECT_EQ(ReadableName(name), QString::fromUcs4(U"\U00010080") + QChar(QChar::ReplacementCharacter));
}

TEST(FileNames, AFileWithSuchANameIsReadWrittenFoundAndDeleted)
{
    const Workplace place;
    const QString path = place.Path(DecodeFileName("\xea\xed\xe8.fb2"));
    ASSERT_TRUE(ReplaceContent(path, "text"));
    EXPECT_EQ(ReadContent(path).bytes, "text");
    EXPECT_EQ(SizeOfFile(path), 4);
    EXPECT_TRUE(LastWriteDate(path).isValid());
    const QStringList names = FindFiles(place.Folder(), u"*.fb2"_s);
    ASSERT_EQ(names.size(), 1);
    EXPECT_EQ(EncodeFileName(names.first()), "\xea\xed\xe8.fb2");
    ASSERT_TRUE(CopyFolderTree(place.Folder(), place.Folder() + u"copy"_s));
    EXPECT_EQ(ReadContent(place.Folder() + u"copy/"_s + names.first()).bytes, "text");
    EXPECT_TRUE(DeleteFolderTree(place.Folder() + u"copy"_s));
    EXPECT_TRUE(DeleteOneFile(path));
    EXPECT_EQ(KindOfFile(path), FileKind::None);
}

TEST(FileNames, ARelativePathBecomesAbsolute)
{
    EXPECT_EQ(AbsolutePath(u"/a/b"_s), u"/a/b"_s);
    EXPECT_EQ(AbsolutePath(u"a/b"_s), QDir::currentPath() + u"/a/b"_s);
}
