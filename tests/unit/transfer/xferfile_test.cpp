// The plain file calls, on real files.
#include "transfer/xferfile.h"

#include "transfer/guarded.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

int* volatile nowhere = nullptr;
volatile int sink = 0;

// A file of its own for each test, gone at its end.
class XferFile : public testing::Test {
  protected:
    XferFile() {
        char folder[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, folder);
        path_ = std::string(folder) + "xferfile.tmp";
        DeleteFileA(path_.c_str());
    }
    ~XferFile() override { DeleteFileA(path_.c_str()); }

    const char* Path() const { return path_.c_str(); }

    void Make(const std::string& contents) {
        FileHandle file = FCreate(Path());
        ASSERT_TRUE(file);
        ASSERT_EQ(Fwrite(file, contents.data(), static_cast<DWORD>(contents.size())), contents.size());
    }

    std::string Contents() {
        const FileHandle file = FopenRead(Path());
        std::string contents(file ? Fsize(file) : 0, '?');
        if (!contents.empty())
            Fread(file, contents.data(), static_cast<DWORD>(contents.size()));
        return file ? contents : "no such file";
    }

  private:
    std::string path_;
};

bool CanOpen(const char* path, DWORD access, DWORD share) {
    return static_cast<bool>(
        FileHandle(CreateFileA(path, access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
}

constexpr DWORD shareBoth = FILE_SHARE_READ | FILE_SHARE_WRITE;

TEST_F(XferFile, OpenForReadNeedsAFile) {
    EXPECT_FALSE(FopenRead(Path()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(Contents(), "no such file");
}

TEST_F(XferFile, OpenForReadReads) {
    Make("abc");
    const FileHandle file = FopenRead(Path());
    char bytes[8] = {};
    EXPECT_EQ(Fread(file, bytes, sizeof bytes), 3u);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(Fread(file, bytes, sizeof bytes), 0u) << "at the end";
}

TEST_F(XferFile, OpenForReadSharesReading) {
    Make("abc");
    const FileHandle file = FopenRead(Path());
    EXPECT_TRUE(CanOpen(Path(), GENERIC_READ, shareBoth));
    EXPECT_FALSE(CanOpen(Path(), GENERIC_WRITE, shareBoth));
}

TEST_F(XferFile, OpenForReadCannotWrite) {
    Make("abc");
    {
        const FileHandle file = FopenRead(Path());
        EXPECT_EQ(Fwrite(file, "xy", 2), 2u) << "the count asked for";
    }
    EXPECT_EQ(Contents(), "abc");
}

TEST_F(XferFile, CreateMakesAndEmpties) {
    Make("first and long");
    Make("2");
    EXPECT_EQ(Contents(), "2");
}

TEST_F(XferFile, CreateSharesReadingAndCannotRead) {
    const FileHandle file = FCreate(Path());
    ASSERT_TRUE(file);
    Fwrite(file, "abc", 3);
    EXPECT_TRUE(CanOpen(Path(), GENERIC_READ, shareBoth));
    EXPECT_FALSE(CanOpen(Path(), GENERIC_WRITE, shareBoth));
    Fseek(file, 0, FILE_BEGIN);
    EXPECT_EQ(FGetc(file), -1);
}

TEST_F(XferFile, CreateNeedsAFolder) {
    EXPECT_FALSE(FCreate((std::string(Path()) + "\\no\\such\\folder").c_str()));
    EXPECT_FALSE(FCreate(""));
}

TEST_F(XferFile, AppendMakesAFile) {
    FileHandle file = FopenAppend(Path());
    ASSERT_TRUE(file);
    Fwrite(file, "abc", 3);
    Fclose(file);
    EXPECT_EQ(Contents(), "abc");
}

TEST_F(XferFile, AppendStandsAtTheEndAndReadsToo) {
    Make("abc");
    FileHandle file = FopenAppend(Path());
    ASSERT_TRUE(file);
    EXPECT_EQ(FGetc(file), -1);
    Fwrite(file, "def", 3);
    Fseek(file, 2, FILE_BEGIN);
    EXPECT_EQ(FGetc(file), 'c');
    Fclose(file);
    EXPECT_EQ(Contents(), "abcdef");
}

TEST_F(XferFile, AppendSharesReading) {
    const FileHandle file = FopenAppend(Path());
    EXPECT_TRUE(CanOpen(Path(), GENERIC_READ, shareBoth));
    EXPECT_FALSE(CanOpen(Path(), GENERIC_WRITE, shareBoth));
}

TEST_F(XferFile, CallThatFailsGivesTheCountAskedFor) {
    const FileHandle none;
    char bytes[8] = {};
    EXPECT_EQ(Fread(none, bytes, 5), 5u);
    EXPECT_EQ(Fwrite(none, bytes, 6), 6u);
}

TEST_F(XferFile, CloseEndsTheHandle) {
    FileHandle file = FCreate(Path());
    Fclose(file);
    EXPECT_FALSE(file);
    EXPECT_TRUE(CanOpen(Path(), GENERIC_WRITE, 0)) << "nobody has it open";
    Fclose(file);
    EXPECT_FALSE(file);
}

TEST_F(XferFile, CharactersAreBytes) {
    Make(std::string("a\0\xFF", 3));
    const FileHandle file = FopenRead(Path());
    for (const int expected : {0x61, 0, 255, -1, -1})
        EXPECT_EQ(FGetc(file), expected);
    EXPECT_EQ(FGetc(FileHandle()), -1);
}

TEST_F(XferFile, CharactersReadAheadAreTheSame) {
    const size_t block = std::tuple_size_v<decltype(ReadAhead::bytes)>;
    for (const size_t size : {size_t{0}, size_t{1}, block - 1, block, block + 1, 2 * block}) {
        std::string contents(size, '\0');
        for (size_t i = 0; i < size; ++i)
            contents[i] = static_cast<char>(i * 7);
        Make(contents);
        const FileHandle file = FopenRead(Path());
        ReadAhead ahead;
        std::string read;
        for (int c = FGetc(file, ahead); c >= 0; c = FGetc(file, ahead))
            read += static_cast<char>(c);
        EXPECT_EQ(read, contents) << size;
        EXPECT_EQ(FGetc(file, ahead), -1);
    }
}

TEST_F(XferFile, NothingIsReadAheadOfNoFile) {
    ReadAhead ahead;
    EXPECT_EQ(FGetc(FileHandle(), ahead), -1);
    EXPECT_EQ(FGetc(FileHandle(), ahead), -1);
}

struct LinesCase {
    const char* name;
    std::string contents;
    int size;
    std::vector<std::string> lines;
};

class XferFileLines : public XferFile, public testing::WithParamInterface<LinesCase> {};

TEST_P(XferFileLines, EndAtCarriageReturns) {
    Make(GetParam().contents);
    const FileHandle file = FopenRead(Path());
    std::vector<char> line(static_cast<size_t>(GetParam().size), '?'); // on the heap, no byte more
    std::vector<std::string> lines;
    while (lines.size() < 10 && Fgets(file, line.data(), GetParam().size) == line.data())
        lines.push_back(line.data());
    EXPECT_EQ(lines, GetParam().lines);
}

const LinesCase linesCases[] = {
    {"Empty", "", 80, {}},
    {"One", "abc\r", 80, {"abc"}},
    {"Pairs", "a\r\nbc\r\n", 80, {"a", "bc"}},
    {"WithoutAnEnd", "a\rbc", 80, {"a", "bc"}},
    {"EmptyLineWithin", "a\r\rb\r", 80, {"a", "", "b"}},
    {"LineFeedsAreDropped", "a\nb\n\nc\r", 80, {"abc"}},
    {"LineFeedsAlone", "\n\n", 80, {}},
    {"LongLineInParts", "abcdefgh\r", 4, {"abc", "def", "gh"}},
    {"PartThatJustFits", "abc\rd\r", 4, {"abc", "", "d"}},
};

INSTANTIATE_TEST_SUITE_P(Rows, XferFileLines, testing::ValuesIn(linesCases),
                         [](const testing::TestParamInfo<LinesCase>& info) { return info.param.name; });

TEST_F(XferFile, LineNeedsRoom) {
    Make("abc\r");
    const FileHandle file = FopenRead(Path());
    char line[] = "??";
    EXPECT_EQ(Fgets(file, line, 0), nullptr);
    EXPECT_EQ(Fgets(file, line, -1), nullptr);
    EXPECT_STREQ(line, "??");
    EXPECT_EQ(Fgets(file, line, 1), line);
    EXPECT_STREQ(line, "");
}

TEST_F(XferFile, SeeksFromEverywhere) {
    Make("abcdef");
    const FileHandle file = FopenRead(Path());
    EXPECT_EQ(Fseek(file, 2, FILE_BEGIN), 2u);
    EXPECT_EQ(FGetc(file), 'c');
    EXPECT_EQ(Fseek(file, 1, FILE_CURRENT), 4u);
    EXPECT_EQ(FGetc(file), 'e');
    EXPECT_EQ(Fseek(file, -1, FILE_END), 5u);
    EXPECT_EQ(FGetc(file), 'f');
    EXPECT_EQ(Fseek(file, -1, FILE_BEGIN), DWORD{INVALID_SET_FILE_POINTER});
    EXPECT_EQ(Fseek(FileHandle(), 0, FILE_BEGIN), DWORD{INVALID_SET_FILE_POINTER});
}

TEST_F(XferFile, SizeIsThatOfTheFile) {
    Make("abcdef");
    EXPECT_EQ(Fsize(FopenRead(Path())), 6u);
    EXPECT_EQ(Fsize(FileHandle()), DWORD{INVALID_FILE_SIZE});
}

// A fault of the caller's making: there is no room where the line should go.
TEST_F(XferFile, FaultGivesTheFailureOfTheCall) {
    Make("abc\r");
    const FileHandle file = FopenRead(Path());
    EXPECT_EQ(Fgets(file, reinterpret_cast<char*>(nowhere), 80), nullptr);
    EXPECT_EQ(FGetc(file), 'b') << "the file is as usable as before";
}

TEST(GuardedStep, GivesItsResult) {
    EXPECT_EQ(Guarded("label", -1, [] { return 5; }), 5);
    bool ran = false;
    Guarded("label", [&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(GuardedStep, FaultGivesTheFailure) {
    EXPECT_EQ(Guarded("label", -1,
                      []() -> int {
                          sink = *nowhere;
                          return 5;
                      }),
              -1);
    Guarded("label", [] { sink = *nowhere; });
}

TEST(GuardedStep, ExceptionGivesTheFailure) {
    EXPECT_EQ(Guarded("label", -1, []() -> int { throw std::runtime_error("mine"); }), -1);
    Guarded(nullptr, [] { throw std::runtime_error("mine"); });
}

TEST(GuardedStep, WorkerLeavesThroughAllGuards) {
    const auto inner = []() -> int { throw WorkerLeaves(); };
    EXPECT_THROW(Guarded("outer", -1, [&] { return Guarded("inner", -1, inner); }), WorkerLeaves);
    EXPECT_THROW(Guarded("label", [] { throw WorkerLeaves(); }), WorkerLeaves);
}

} // namespace
