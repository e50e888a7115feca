// Project files: the dialogs that ask for their names, what is written, what is read.
#include "loggedcontrol.h"

#include "control/inifile.h"
#include "control/projectfile.h"
#include "core/comobject.h"
#include "support/filequestion.h"
#include "support/systemdialog.h"

using namespace controltest;

namespace {

using host::CancelsFile;
using host::ChoosesFile;
using host::DoubleGetOpenFileNameA;
using host::DoubleGetSaveFileNameA;
using host::FileQuestion;
host::FileQuestions& dialogs = host::fileQuestions;

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(GetOpenFileNameA, 4)
TARN_IMPORT_DOUBLE(GetSaveFileNameA, 4)
}

namespace {

// A folder of the test's own. The system's dialogs make it the current one, which could not be removed.
class Folder {
  public:
    Folder() {
        GetCurrentDirectoryA(MAX_PATH, before_);
        char folder[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, folder);
        path_ = std::string(folder) + "project-" + std::to_string(GetCurrentProcessId());
        EXPECT_TRUE(CreateDirectoryA(path_.c_str(), nullptr));
    }
    ~Folder() {
        SetCurrentDirectoryA(before_);
        for (const std::string& name : names_)
            DeleteFileA(name.c_str());
        EXPECT_TRUE(RemoveDirectoryA(path_.c_str())) << "a file that no test knows of";
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string Path(const std::string& name) {
        names_.push_back(path_ + "\\" + name);
        return names_.back();
    }
    std::string Make(const std::string& name, const std::string& content) {
        const std::string path = Path(name);
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

  private:
    char before_[MAX_PATH] = {};
    std::string path_;
    std::vector<std::string> names_;
};

using Lines = std::vector<std::string>;

// Without the empty ones.
Lines LinesOf(const std::string& text) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (!line.empty())
            lines.push_back(line);
    }
    return lines;
}

constexpr char example[] =
    "[Comm]\r\nSettings=1200,e,7,1\r\nPhoneNumber=5551234\r\nPort=COM9\r\nProtocol=3\r\n";

using Command = void (*)(CTarnCommCtl&);

class ProjectFile : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(control.Object(), nullptr);
        dialogs = {};
        dialogs.answer = [](OPENFILENAMEA&) {
            ADD_FAILURE() << "no dialog is wanted here";
            return false;
        };
    }
    ~ProjectFile() override { dialogs = {}; }

    void Do(Command command) { command(*control.Pointer().Get()); }
    void SetName(const std::string& name) {
        control.Put(&ITarnComm::put_ProjectFilename, WideOf(name).c_str());
    }
    std::string Name() { return control.Text(&ITarnComm::get_ProjectFilename); }
    std::string PhoneNumber() { return control.Text(&ITarnComm::get_PhoneNumber); }
    std::string Settings() { return control.Text(&ITarnComm::get_Settings); }
    std::string Port() { return GetCommPort(control.Object()); }
    int Protocol() { return GetProtocol(control.Object()); }

    // The host gives COM5; somebody gives the comm object COM6 behind the control's back.
    void GiveTwoPorts() {
        control->put_CommPort(_variant_t(L"COM5"));
        SetCommPort(control.Object(), "COM6");
    }
    std::string WrittenPort(const std::string& path) {
        CIniFile file;
        file.Open(path.c_str());
        return file.GetString("Port", "none");
    }

    Control control;
    Folder folder;
};

// The dialogs

const std::string filterBytes("Communications Files (*.tlo)\0*.tlo\0All Files (*.*)\0*.*\0", 55);

struct DialogRow {
    Command command;
    bool isSave;
    const char* title;
    DWORD flags;
};

constexpr DialogRow dialogRows[] = {
    {OpenProject, false, "Open Project", 0x81004},
    {SaveProject, true, "Save Project", 0x80004},
    {SaveProjectAs, true, "Save Project", 0x80004},
};

TEST_F(ProjectFile, DialogsAreAskedWithTheirFields) {
    control.Show();
    dialogs.answer = CancelsFile;
    for (const DialogRow& row : dialogRows) {
        SCOPED_TRACE(row.title);
        dialogs.asked.clear();
        Do(row.command);
        ASSERT_EQ(dialogs.asked.size(), 1u);
        const FileQuestion& asked = dialogs.asked.front();
        EXPECT_EQ(asked.isSave, row.isSave);
        EXPECT_EQ(asked.owner, control.Container().window);
        EXPECT_EQ(asked.module, ThisModule());
        EXPECT_EQ(asked.filter, filterBytes);
        EXPECT_EQ(asked.name, "");
        EXPECT_EQ(asked.nameSize, 260u);
        EXPECT_EQ(asked.title, row.title);
        EXPECT_EQ(asked.extension, ".tlo");
        EXPECT_EQ(asked.flags, row.flags);
        EXPECT_FALSE(asked.hasMore);
    }
}

TEST_F(ProjectFile, ControlWithoutAWindowHasNoOwnerForThem) {
    dialogs.answer = CancelsFile;
    for (const DialogRow& row : dialogRows) {
        dialogs.asked.clear();
        Do(row.command);
        ASSERT_EQ(dialogs.asked.size(), 1u);
        EXPECT_EQ(dialogs.asked.front().owner, nullptr);
    }
}

TEST_F(ProjectFile, CancelLeavesAllAsItWas) {
    dialogs.answer = CancelsFile;
    control->put_PhoneNumber(_bstr_t(L"5550000"));
    for (const DialogRow& row : dialogRows) {
        Do(row.command);
        EXPECT_EQ(Name(), "");
        EXPECT_EQ(PhoneNumber(), "5550000");
    }
    EXPECT_EQ(dialogs.asked.size(), 3u);
    EXPECT_FALSE(logfiles::FileExists("C:\\typed"));
}

// The control keeps no difference between no name and an empty one.
TEST_F(ProjectFile, NoNameIsAskedForHoweverItIsCleared) {
    dialogs.answer = CancelsFile;
    for (const DialogRow& row : {dialogRows[0], dialogRows[1]}) {
        dialogs.asked.clear();
        EXPECT_EQ(control->put_ProjectFilename(nullptr), S_OK);
        Do(row.command);
        EXPECT_EQ(dialogs.asked.size(), 1u) << row.title;
        SetName("");
        Do(row.command);
        EXPECT_EQ(dialogs.asked.size(), 2u) << row.title;
    }
}

// Open

TEST_F(ProjectFile, OpenTakesTheChosenFile) {
    const std::string path = folder.Make("a.tlo", example);
    dialogs.answer = ChoosesFile(path);
    Do(OpenProject);
    EXPECT_EQ(Name(), path);
    EXPECT_EQ(Settings(), "1200,e,7,1");
    EXPECT_EQ(Port(), "COM9");
    EXPECT_EQ(Protocol(), 3);
    EXPECT_EQ(PhoneNumber(), "5551234");
}

TEST_F(ProjectFile, OpenReadsInItsOrder) {
    SetName(folder.Make("a.tlo", example));
    control->put_WireTapProperties(VARIANT_TRUE);
    control->put_WireTap(VARIANT_TRUE);
    EXPECT_EQ(LogOf([&] { Do(OpenProject); }),
              Line("Comm.Settings = \"1200,e,7,1\"") + Line("Comm.CommPort = \"COM9\"") +
                  Line("Comm.XferProtocol = 3") + Line("Comm.ProjectPhoneNumber = \"5551234\""));
}

TEST_F(ProjectFile, OpenTellsOfTheSettings) {
    SetName(folder.Make("a.tlo", example));
    constexpr DISPID settings = 1;
    const std::vector<DISPID> changes = control.ChangesOf([&] { Do(OpenProject); });
    EXPECT_EQ(std::ranges::count(changes, settings), 1);
}

TEST_F(ProjectFile, OpenWithANameReadsThatFileAgain) {
    SetName(folder.Make("a.tlo", example));
    Do(OpenProject);
    control->put_PhoneNumber(_bstr_t(L"1"));
    Do(OpenProject);
    EXPECT_EQ(PhoneNumber(), "5551234");
    EXPECT_EQ(dialogs.asked.size(), 0u);
}

TEST_F(ProjectFile, OpenAsksAgainOnceTheNameIsCleared) {
    SetName(folder.Make("a.tlo", example));
    Do(OpenProject);
    SetName("");
    const std::string other = folder.Make("b.tlo", "[Comm]\r\nPhoneNumber=2\r\n");
    dialogs.answer = ChoosesFile(other);
    Do(OpenProject);
    EXPECT_EQ(Name(), other);
    EXPECT_EQ(PhoneNumber(), "2");
}

struct ReadRow {
    const char* name;
    const char* content;
    const char* settings;
    const char* port;
    int protocol;
    const char* phoneNumber;
};

// Those of the comm object from before.
constexpr char keptSettings[] = "9600,n,8,1";

constexpr ReadRow readRows[] = {
    {"no protocol", "[Comm]\r\nSettings=300,e,7,1\r\nPort=COM9\r\nPhoneNumber=3\r\n", "300,e,7,1", "COM9", 5,
     "3"},
    {"no settings", "[Comm]\r\nPort=COM9\r\nProtocol=1\r\nPhoneNumber=3\r\n", keptSettings, "COM9", 1, "3"},
    {"no number", "[Comm]\r\nSettings=300,e,7,1\r\nPort=COM9\r\nProtocol=0\r\n", "300,e,7,1", "COM9", 0, ""},
    {"another section", "[Line]\r\nPort=COM9\r\nProtocol=1\r\nPhoneNumber=3\r\n", keptSettings, "", 5, ""},
    {"empty", "", keptSettings, "", 5, ""},
    {"no project", "GIF89a\1\2\3 and so on", keptSettings, "", 5, ""},
    {"any case", "[COMM]\r\nport=com9\r\nPROTOCOL=6\r\n", keptSettings, "com9", 6, ""},
    {"no numeral", "[Comm]\r\nPort=COM9\r\nProtocol=ZModem\r\n", keptSettings, "COM9", 0, ""},
    {"a name with signs", "[Comm]\r\nPort=%s%n\r\nPhoneNumber=%s%n\r\n", keptSettings, "%s%n", 5, "%s%n"},
};

TEST_F(ProjectFile, WhatIsMissingHasItsDefault) {
    SetName(folder.Path("a.tlo"));
    for (const ReadRow& row : readRows) {
        SCOPED_TRACE(row.name);
        control->put_Settings(_bstr_t(L"9600,n,8,1"));
        control->put_XferProtocol(Protocol_Kermit);
        control->put_PhoneNumber(_bstr_t(L"5550000"));
        folder.Make("a.tlo", row.content);
        Do(OpenProject);
        EXPECT_EQ(Settings(), row.settings);
        EXPECT_EQ(Port(), row.port);
        EXPECT_EQ(Protocol(), row.protocol);
        EXPECT_EQ(PhoneNumber(), row.phoneNumber);
    }
}

TEST_F(ProjectFile, FileThatIsNotThereGivesEmptyValues) {
    control->put_PhoneNumber(_bstr_t(L"5550000"));
    SetName(folder.Path("none.tlo"));
    Do(OpenProject);
    EXPECT_EQ(PhoneNumber(), "");
    EXPECT_EQ(Protocol(), 5);
}

TEST_F(ProjectFile, LongValuesAreCut) {
    SetName(folder.Make("a.tlo", "[Comm]\r\nPhoneNumber=" + std::string(300, '7') + "\r\n"));
    Do(OpenProject);
    EXPECT_EQ(PhoneNumber(), std::string(255, '7'));
}

// Save and Save As

TEST_F(ProjectFile, SaveWritesTheKeysInTheirOrder) {
    const std::string path = folder.Path("a.tlo");
    dialogs.answer = ChoosesFile(path);
    control->put_Settings(_bstr_t(L"1200,e,7,1"));
    control->put_CommPort(_variant_t(L"COM9"));
    control->put_XferProtocol(Protocol_YModem);
    control->put_PhoneNumber(_bstr_t(L"5551234"));
    for (const Command save : {SaveProject, SaveProjectAs}) {
        Do(save);
        EXPECT_EQ(Name(), path);
        EXPECT_EQ(LinesOf(logfiles::ReadWholeFile(path)), LinesOf(example));
        DeleteFileA(path.c_str());
    }
}

TEST_F(ProjectFile, SecondSaveAsksNothing) {
    const std::string path = folder.Path("a.tlo");
    dialogs.answer = ChoosesFile(path);
    Do(SaveProject);
    DeleteFileA(path.c_str());
    Do(SaveProject);
    EXPECT_EQ(dialogs.asked.size(), 1u);
    EXPECT_TRUE(logfiles::FileExists(path));
}

TEST_F(ProjectFile, SaveTakesTheObjectsPort) {
    const std::string path = folder.Path("a.tlo");
    SetName(path);
    GiveTwoPorts();
    Do(SaveProject);
    EXPECT_EQ(WrittenPort(path), "COM6");
}

TEST_F(ProjectFile, SaveWithoutACommObjectLeavesTheFileAsItWas) {
    const std::string path = folder.Path("a.tlo");
    SetName(path);
    GiveTwoPorts();
    Do(SaveProject);
    DestroyWindow(control.Object());
    Do(SaveProject);
    EXPECT_EQ(WrittenPort(path), "COM6");
}

TEST_F(ProjectFile, SaveAsTakesTheHostsPort) {
    const std::string path = folder.Path("a.tlo");
    dialogs.answer = ChoosesFile(path);
    GiveTwoPorts();
    Do(SaveProjectAs);
    EXPECT_EQ(WrittenPort(path), "COM5");
}

TEST_F(ProjectFile, SaveAsAlwaysAsksAndShowsTheName) {
    const std::string first = folder.Path("a.tlo");
    const std::string second = folder.Path("b.tlo");
    SetName(first);
    dialogs.answer = ChoosesFile(second);
    Do(SaveProjectAs);
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_EQ(dialogs.asked.front().name, first);
    EXPECT_EQ(Name(), second);
    EXPECT_FALSE(logfiles::FileExists(first));
    EXPECT_TRUE(logfiles::FileExists(second));
}

TEST_F(ProjectFile, CancelledSaveAsLeavesTheName) {
    const std::string path = folder.Path("a.tlo");
    SetName(path);
    dialogs.answer = CancelsFile;
    Do(SaveProjectAs);
    EXPECT_EQ(Name(), path);
    EXPECT_FALSE(logfiles::FileExists(path));
}

TEST_F(ProjectFile, NameThatDoesNotFitIsCutInTheDialog) {
    SetName(std::string(300, 'n'));
    dialogs.answer = CancelsFile;
    Do(SaveProjectAs);
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_EQ(dialogs.asked.front().name, std::string(259, 'n'));
}

TEST_F(ProjectFile, OtherLinesOfTheFileStay) {
    const std::string path = folder.Make("a.tlo", "[Comm]\r\nPort=COM9\r\nColor=4\r\n[Other]\r\nPort=1\r\n");
    SetName(path);
    control->put_CommPort(_variant_t(L"COM5"));
    Do(SaveProject);
    const std::string text = logfiles::ReadWholeFile(path);
    EXPECT_NE(text.find("Port=COM5\r\n"), text.npos);
    EXPECT_NE(text.find("Color=4\r\n"), text.npos);
    EXPECT_NE(text.find("[Other]\r\nPort=1"), text.npos);
}

TEST_F(ProjectFile, WhatIsSavedIsRead) {
    SetName(folder.Path("a.tlo"));
    control->put_Settings(_bstr_t(L"57600,o,7,2"));
    control->put_CommPort(_variant_t(L"R&D's Fast Modem %d"));
    control->put_XferProtocol(Protocol_XModemChecksum);
    control->put_PhoneNumber(_bstr_t(L"+49 (30) 555;w=2"));
    Do(SaveProject);
    control->put_Settings(_bstr_t(L"9600,n,8,1"));
    control->put_CommPort(_variant_t(L"COM5"));
    control->put_XferProtocol(Protocol_Kermit);
    control->put_PhoneNumber(_bstr_t(L""));
    Do(OpenProject);
    EXPECT_EQ(Settings(), "57600,o,7,2");
    EXPECT_EQ(Port(), "R&D's Fast Modem %d");
    EXPECT_EQ(Protocol(), 0);
    EXPECT_EQ(PhoneNumber(), "+49 (30) 555;w=2");
}

TEST_F(ProjectFile, WriteThatFailsIsSilent) {
    const std::string path = folder.Path("no such folder\\a.tlo");
    SetName(path);
    SetErrorInfo(0, nullptr);
    Do(SaveProject);
    EXPECT_FALSE(logfiles::FileExists(path));
    EXPECT_EQ(Name(), path);
    EXPECT_EQ(ErrorText(), "no error");
}

// What hosts do meanwhile

TEST_F(ProjectFile, HostMayDropTheControlInTheDialog) {
    control.Show();
    CTarnCommCtl* const dropped = control.Pointer().Get();
    const std::string path = folder.Path("a.tlo");
    dialogs.answer = [&](OPENFILENAMEA& choice) {
        control.Container().Drop();
        control.Pointer().Reset();
        return ChoosesFile(path)(choice);
    };
    SaveProjectAs(*dropped);
    EXPECT_FALSE(logfiles::FileExists(path)) << "there is nothing left to write";
}

TEST_F(ProjectFile, CommObjectMayGoInTheDialog) {
    const std::string path = folder.Make("a.tlo", example);
    for (const DialogRow& row : dialogRows) {
        SCOPED_TRACE(row.title);
        Control other;
        dialogs.answer = [&](OPENFILENAMEA& choice) {
            DestroyWindow(other.Object());
            return ChoosesFile(path)(choice);
        };
        row.command(*other.Pointer().Get());
        EXPECT_EQ(other.Text(&ITarnComm::get_ProjectFilename), "");
        EXPECT_EQ(other.Text(&ITarnComm::get_PhoneNumber), "");
    }
    EXPECT_EQ(logfiles::ReadWholeFile(path), example);
}

// Told of the settings, it takes the control away; it takes no part in the rest.
class DroppingSink : public host::Counted<DroppingSink, IPropertyNotifySink> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyNotifySink>>;
    explicit DroppingSink(std::function<void()> drop) : drop_(std::move(drop)) {}

    HRESULT STDMETHODCALLTYPE OnChanged(DISPID) override {
        if (const auto drop = std::exchange(drop_, nullptr))
            drop();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override { return S_OK; }
    bool HasDropped() const { return !drop_; }

  private:
    std::function<void()> drop_;
};

TEST_F(ProjectFile, HostMayDropTheControlWhenItIsToldOfTheSettings) {
    SetName(folder.Make("a.tlo", example));
    control.Show();
    CTarnCommCtl* const dropped = control.Pointer().Get();
    DroppingSink sink([this] {
        control.Container().Drop();
        control.Pointer().Reset();
    });
    DWORD cookie = 0;
    {
        ComPtr<IConnectionPoint> point;
        ASSERT_EQ(dropped->FindConnectionPoint(IID_IPropertyNotifySink, point.GetAddressOf()), S_OK);
        ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    }
    OpenProject(*dropped);
    EXPECT_TRUE(sink.HasDropped());
    EXPECT_EQ(sink.References(), 0u) << "the control has ended";
}

// The system's own dialogs

TEST_F(ProjectFile, UserOpensAFile) {
    const std::string path = folder.Make("a.tlo", example);
    dialogs.answer = nullptr;
    {
        const host::SystemDialogUser user([] { return host::DialogTitled("Open Project"); },
                                          [&](HWND hDlg) { host::TypeFileName(hDlg, path); });
        Do(OpenProject);
    }
    EXPECT_EQ(Name(), path);
    EXPECT_EQ(PhoneNumber(), "5551234");
}

TEST_F(ProjectFile, UserSavesAFile) {
    const std::string path = folder.Path("a.tlo");
    dialogs.answer = nullptr;
    {
        const host::SystemDialogUser user([] { return host::DialogTitled("Save Project"); },
                                          [&](HWND hDlg) { host::TypeFileName(hDlg, path); });
        Do(SaveProject);
    }
    EXPECT_EQ(Name(), path);
    EXPECT_TRUE(logfiles::FileExists(path));
}

TEST_F(ProjectFile, UserCancels) {
    dialogs.answer = nullptr;
    for (const DialogRow& row : dialogRows) {
        const host::SystemDialogUser user([&] { return host::DialogTitled(row.title); }, host::PressCancel);
        Do(row.command);
        EXPECT_EQ(Name(), "");
    }
}

// The class below

TEST(IniFile, RemembersAFailedWriteUntilItIsOpenedAgain) {
    Folder folder;
    CIniFile file;
    file.Open(folder.Path("no such folder\\a.tlo").c_str());
    EXPECT_FALSE(file.HasFailed());
    file.WriteString("Port", "COM1");
    EXPECT_TRUE(file.HasFailed());
    file.Open(folder.Path("a.tlo").c_str());
    EXPECT_FALSE(file.HasFailed());
    file.WriteInt("Protocol", -3);
    EXPECT_FALSE(file.HasFailed());
    EXPECT_EQ(file.GetInt("Protocol", 5), -3);
}

TEST(IniFile, DefaultsStandForWhatIsMissing) {
    CIniFile file;
    file.Open("C:\\no such folder\\a.tlo");
    EXPECT_STREQ(file.GetString("Port", "COM1"), "COM1");
    EXPECT_EQ(file.GetInt("Protocol", 7), 7);
}

TEST(IniFile, CutsANameThatDoesNotFit) {
    CIniFile file;
    file.Open(std::string(5000, 'n').c_str());
    EXPECT_STREQ(file.GetString("Port", ""), "");
    EXPECT_STREQ(file.GetString("Port", std::string(5000, 'd').c_str()), std::string(255, 'd').c_str());
}

} // namespace
