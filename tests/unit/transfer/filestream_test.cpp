// The files of X, Y and ZModem on a real file system.
#include "transferpair.h"

#include "transfer/filestream.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace host;

namespace {

constexpr int64_t someTime = 1000000000; // seconds since 1970

std::string ReadAll(FileStream& file) {
    std::string contents(100, '\0');
    contents.resize(static_cast<size_t>(file.Read(contents.data(), 100)));
    return contents;
}

} // namespace

TEST(FileStream, ReadsBytesAsTheyAre) {
    const Folder folder;
    FileStream file;
    ASSERT_EQ(file.Open(folder.Write("a", "1\r\n2\x1A 3"), FileMode::Read), 0);
    EXPECT_EQ(ReadAll(file), "1\r\n2\x1A 3");
    EXPECT_EQ(ReadAll(file), "");
    EXPECT_FALSE(file.ReadFailed());
    EXPECT_TRUE(file.Seek(3));
    EXPECT_EQ(ReadAll(file), "2\x1A 3");
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.IsOpen());
}

TEST(FileStream, WritesAppendsAndUpdates) {
    const Folder folder;
    FileStream file;
    ASSERT_EQ(file.Open(folder.In("a"), FileMode::Write), 0);
    EXPECT_TRUE(file.Write("one\n", 4));
    ASSERT_EQ(file.Open(folder.In("a"), FileMode::Append), 0) << "closes what was open";
    EXPECT_TRUE(file.Write("two", 3));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("a"), "one\ntwo");
    ASSERT_EQ(file.Open(folder.In("a"), FileMode::Update), 0);
    EXPECT_TRUE(file.Seek(4));
    EXPECT_TRUE(file.Write("T", 1));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("a"), "one\nTwo");
    ASSERT_EQ(file.Open(folder.In("a"), FileMode::Write), 0);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("a"), "");
}

TEST(FileStream, TellsWhyAFileDoesNotOpen) {
    const Folder folder;
    FileStream file;
    EXPECT_EQ(file.Open(folder.In("missing"), FileMode::Read), ENOENT);
    EXPECT_EQ(file.Open(folder.In("missing"), FileMode::Update), ENOENT);
    EXPECT_EQ(file.Open(folder.In("no folder\\a"), FileMode::Write), ENOENT);
    EXPECT_NE(file.Open(folder.Path(), FileMode::Write), 0);
    EXPECT_FALSE(file.IsOpen());
    const std::string path = folder.Write("locked", "x");
    const FileHandle lock(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(file.Open(path, FileMode::Read), EACCES);
    EXPECT_EQ(file.Open(path, FileMode::Write), EACCES);
}

TEST(FileStream, AFailedWriteShowsAtTheClose) {
    const Folder folder;
    FileStream file;
    ASSERT_EQ(file.Open(folder.Write("a", ""), FileMode::Read), 0);
    EXPECT_FALSE(file.Write("x", 1)) << "it was opened for reading";
    EXPECT_FALSE(file.Close());
    EXPECT_FALSE(file.Write("x", 1)) << "it is closed";
}

TEST(FileStream, KnowsSizeTimeAndKind) {
    const Folder folder;
    FileInfo info;
    EXPECT_FALSE(GetFileInfo(folder.In("missing"), info));
    const std::string path = folder.Write("a", "12345");
    SetFileTimes(path, someTime + 5, someTime);
    ASSERT_TRUE(GetFileInfo(path, info));
    EXPECT_EQ(info.cbFile, 5);
    EXPECT_EQ(info.modified, someTime);
    EXPECT_FALSE(info.isFolder);
    ASSERT_TRUE(GetFileInfo(folder.Path(), info));
    EXPECT_TRUE(info.isFolder);
}

TEST(FileStream, MakesFolders) {
    const Folder folder;
    EXPECT_EQ(MakeFolder(folder.In("new")), 0);
    EXPECT_EQ(MakeFolder(folder.In("new")), EEXIST);
    EXPECT_EQ(MakeFolder(folder.In("no\\new")), ENOENT);
    EXPECT_TRUE(RemoveDirectoryA(folder.In("new").c_str()));
}

TEST(FileStream, HugeFilesCountAsTheLargest) {
    const Folder folder;
    const std::string path = folder.Write("huge", "");
    {
        const FileHandle file(
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        LONG high = 1;
        SetFilePointer(file.get(), 0, &high, FILE_BEGIN);
        ASSERT_TRUE(SetEndOfFile(file.get())) << "a sparse file of 4 GB";
    }
    FileInfo info;
    ASSERT_TRUE(GetFileInfo(path, info));
    EXPECT_EQ(info.cbFile, LargestFile);
}

TEST(FileStream, ClockIsTheSystems) {
    EXPECT_GT(CurrentTime(), someTime);
}
