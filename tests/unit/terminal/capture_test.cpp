// Capture into files of the platform, through the flat functions.
#include "terminalobject.h"

#include "core/handle.h"
#include "terminal/capture.h"
#include "unit/diagnostics/logfiles.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

class CaptureFile : public testing::Test {
  protected:
    CaptureFile() {
        DeleteFileA(path.c_str());
        object.emplace();
        SetRows(*object, 2);
    }
    ~CaptureFile() override {
        object.reset();
        DeleteFileA(path.c_str());
    }
    std::string Captured() const { return logfiles::ReadWholeFile(path); }
    bool CanBeOpened(DWORD access) const {
        const FileHandle file(CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        return static_cast<bool>(file);
    }

    const std::string path = logfiles::WindowsFolderFile("captured.txt");
    std::optional<host::TerminalObject> object;
};

TEST_F(CaptureFile, EndOfTheObjectWritesWhatIsSeenAndClosesIt) {
    SetCaptureMode(*object, Capture_Visible);
    ASSERT_EQ(SetCaptureFilename(*object, path.c_str()), 1);
    TerminalPrintString(*object, "one\r\ntwo\r\nthree");
    EXPECT_EQ(Captured(), "one\r\n") << "written straight through";
    object.reset();
    EXPECT_EQ(Captured(), "one\r\ntwo\r\nthree\r\n");
    EXPECT_TRUE(CanBeOpened(GENERIC_WRITE));
}

TEST_F(CaptureFile, OtherWritersAreDeniedWhileItIsOpen) {
    ASSERT_EQ(SetCaptureFilename(*object, path.c_str()), 1);
    EXPECT_FALSE(CanBeOpened(GENERIC_WRITE));
    EXPECT_TRUE(CanBeOpened(GENERIC_READ));
    const host::TerminalObject other;
    EXPECT_EQ(SetCaptureFilename(other, path.c_str()), 0);
    EXPECT_EQ(SetCaptureFilename(*object, nullptr), 1);
    EXPECT_TRUE(CanBeOpened(GENERIC_WRITE));
}

TEST_F(CaptureFile, ExistingTextStaysInFrontOfTheNew) {
    for (const char* text : {"old ", "new"}) {
        ASSERT_EQ(SetCaptureFilename(*object, path.c_str()), 1);
        TerminalPrintString(*object, text);
        ASSERT_EQ(SetCaptureFilename(*object, ""), 1);
    }
    EXPECT_EQ(Captured(), "old new");
}

TEST_F(CaptureFile, ModeMayChangeThroughItsSetter) {
    ASSERT_EQ(SetCaptureFilename(*object, path.c_str()), 1);
    TerminalPrintString(*object, "a\033[1m");
    SetCaptureMode(*object, Capture_Binary);
    TerminalPrintString(*object, "b\033[1m");
    EXPECT_EQ(Captured(), "ab\033[1m");
}

} // namespace
