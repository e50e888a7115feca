// The two dialog procedures of the core, in dialogs whose templates are made here.
#include "support/line.h"

#include "core/bugtrap.h"

#include <cstdlib>
#include <functional>
#include <memory>

namespace {

constexpr WORD buttonClass = 0x80;
constexpr WORD staticClass = 0x82;
constexpr WORD boldWeight = 700;

// An extended dialog template, whose font is bold so that a normal one can be told from it.
class Template {
  public:
    Template() {
        PutWord(1); // version
        PutWord(0xffff);
        PutLong(0); // help
        PutLong(0); // extended style
        PutLong(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT | DS_MODALFRAME);
        countAt_ = words_.size();
        PutWord(0);
        PutBox(10, 10, 200, 120);
        PutWord(0); // menu
        PutWord(0); // class
        PutText(L"");
        PutWord(8); // points
        PutWord(boldWeight);
        PutWord(TRUE | DEFAULT_CHARSET << 8); // italic in the low byte
        PutText(L"Tahoma");
    }

    Template& Add(WORD windowClass, int control, DWORD style) {
        if (words_.size() % 2)
            PutWord(0);
        PutLong(0); // help
        PutLong(0); // extended style
        PutLong(style | WS_CHILD | WS_VISIBLE);
        PutBox(5, 5, 40, 10);
        PutLong(static_cast<DWORD>(control));
        PutWord(0xffff);
        PutWord(windowClass);
        PutText(L"");
        PutWord(0); // creation data
        ++words_[countAt_];
        return *this;
    }

    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

  private:
    void PutWord(int value) { words_.push_back(static_cast<WORD>(value)); }
    void PutLong(DWORD value) {
        PutWord(LOWORD(value));
        PutWord(HIWORD(value));
    }
    void PutBox(int left, int top, int width, int height) {
        for (const int value : {left, top, width, height})
            PutWord(value);
    }
    void PutText(const wchar_t* text) {
        do
            PutWord(*text);
        while (*text++);
    }

    std::vector<WORD> words_; // the allocator's alignment is the template's
    size_t countAt_ = 0;
};

struct WindowCloser {
    using pointer = HWND;
    void operator()(HWND hWnd) const { DestroyWindow(hWnd); }
};
using Dialog = std::unique_ptr<HWND, WindowCloser>;

Dialog MakeDialog(const Template& layout, DLGPROC procedure, const void* parameter) {
    return Dialog(CreateDialogIndirectParamA(GetModuleHandleA(nullptr), layout.Get(), nullptr, procedure,
                                             reinterpret_cast<LPARAM>(parameter)));
}

// Runs a modal dialog. A timer of the thread plays the user once the dialog waits for one, and gives up on a
// dialog that stays.
class ModalRun {
  public:
    using User = std::function<void(HWND hDialog)>;

    static constexpr INT_PTR stayed = -1000;
    static constexpr INT_PTR neverShown = -1001;

    static INT_PTR Play(const Template& layout, DLGPROC procedure, const void* parameter, const User& user) {
        ModalRun run(user);
        running = &run;
        const UINT_PTR timer = SetTimer(nullptr, 0, 10, OnTimer);
        const INT_PTR result = DialogBoxIndirectParamA(GetModuleHandleA(nullptr), layout.Get(), nullptr,
                                                       procedure, reinterpret_cast<LPARAM>(parameter));
        KillTimer(nullptr, timer);
        running = nullptr;
        return run.played_ ? result : neverShown;
    }

  private:
    static constexpr DWORD limitMilliseconds = 5000;

    explicit ModalRun(const User& user) : user_(user) {}

    static BOOL CALLBACK KeepDialog(HWND hWnd, LPARAM found) {
        char name[16] = {};
        GetClassNameA(hWnd, name, sizeof name);
        if (std::string(name) != "#32770")
            return TRUE;
        *reinterpret_cast<HWND*>(found) = hWnd;
        return FALSE;
    }

    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) {
        HWND hDialog = nullptr;
        EnumThreadWindows(GetCurrentThreadId(), KeepDialog, reinterpret_cast<LPARAM>(&hDialog));
        if (running && hDialog)
            running->Step(hDialog);
    }

    void Step(HWND hDialog) {
        if (!played_) {
            played_ = true;
            playedAt_ = GetTickCount();
            user_(hDialog);
        } else if (GetTickCount() - playedAt_ >= limitMilliseconds) {
            EndDialog(hDialog, stayed);
        }
    }

    static inline ModalRun* running = nullptr;

    const User& user_;
    bool played_ = false;
    DWORD playedAt_ = 0;
};

void Command(HWND hDialog, int control) {
    SendMessageA(hDialog, WM_COMMAND, MAKEWPARAM(control, BN_CLICKED), 0);
}

struct Group {
    int first;
    int last;
};

constexpr Group speedGroup = {11, 18};
constexpr Group dataBitsGroup = {22, 25};
constexpr Group stopBitsGroup = {31, 33};
constexpr Group parityGroup = {41, 45};
constexpr Group handshakingGroup = {51, 53};
constexpr Group settingsGroups[] = {speedGroup, dataBitsGroup, stopBitsGroup, parityGroup, handshakingGroup};

constexpr int noButton = 0;
constexpr int severalButtons = -1;

int CheckedButton(HWND hDialog, Group group) {
    int checked = noButton;
    for (int control = group.first; control <= group.last; ++control)
        if (IsDlgButtonChecked(hDialog, control) == BST_CHECKED)
            checked = checked == noButton ? control : severalButtons;
    return checked;
}

void Choose(HWND hDialog, Group group, int control) {
    CheckRadioButton(hDialog, group.first, group.last, control);
}

// The buttons that end the dialog come first: the focus does not touch the groups.
const Template& SettingsTemplate() {
    static const Template layout = [] {
        Template made;
        made.Add(buttonClass, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP);
        made.Add(buttonClass, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP);
        for (const Group& group : settingsGroups)
            for (int control = group.first; control <= group.last; ++control)
                made.Add(buttonClass, control, BS_AUTORADIOBUTTON | (control == group.first ? WS_GROUP : 0u));
        return made;
    }();
    return layout;
}

Dialog MakeSettingsDialog(HWND object) {
    return MakeDialog(SettingsTemplate(), PortSettingsDialogProc, object);
}

std::string SettingsOf(HWND object) {
    char text[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(object, text);
    return text;
}

INT_PTR PlaySettingsDialog(HWND object, const ModalRun::User& user) {
    return ModalRun::Play(SettingsTemplate(), PortSettingsDialogProc, object, user);
}

struct InitialRow {
    const char* settings;
    int speed;
    int parity;
    int dataBits;
    int stopBits;
};

const InitialRow initialRows[] = {
    {"1200,n,5,1", 11, 41, 22, 31},       {"2400,o,6,1.5", 12, 42, 23, 32},
    {"4800,e,7,2", 13, 43, 24, 33},       {"9600,m,8,1", 14, 44, 25, 31},
    {"14400,s,8,1", 15, 45, 25, 31},      {"19200,n,8,1", 16, 41, 25, 31},
    {"28800,n,8,1", 17, 41, 25, 31},      {"38400,n,8,1", 18, 41, 25, 31},
    {"115200,n,8,1", 18, 41, 25, 31},     {"300,n,8,1", 18, 41, 25, 31},
    {",n,8,1", 18, 41, 25, 31},           {"9600,,8,1", 14, noButton, 25, 31},
    {"9600,n,4,1", 14, 41, noButton, 31}, {"9600,n,8,", 14, 41, 25, noButton},
};

TEST(SettingsDialog, ButtonsShowTheSettings) {
    for (const InitialRow& row : initialRows) {
        SCOPED_TRACE(row.settings);
        host::CommObject object;
        ASSERT_EQ(SetSettings(object, row.settings), 0);
        const Dialog dialog = MakeSettingsDialog(object);
        ASSERT_TRUE(dialog);
        EXPECT_EQ(CheckedButton(dialog.get(), speedGroup), row.speed);
        EXPECT_EQ(CheckedButton(dialog.get(), parityGroup), row.parity);
        EXPECT_EQ(CheckedButton(dialog.get(), dataBitsGroup), row.dataBits);
        EXPECT_EQ(CheckedButton(dialog.get(), stopBitsGroup), row.stopBits);
    }
}

struct HandshakingRow {
    int handshaking;
    int button;
    int readBack;
};

constexpr HandshakingRow handshakingRows[] = {
    {-1, 52, 2}, {0, 53, 0}, {1, 51, 1}, {2, 52, 2}, {3, 52, 2}, {4, 52, 2},
};

TEST(SettingsDialog, ButtonsShowTheHandshaking) {
    for (const HandshakingRow& row : handshakingRows) {
        SCOPED_TRACE(row.handshaking);
        host::CommObject object;
        SetHandshaking(object, row.handshaking);
        const Dialog dialog = MakeSettingsDialog(object);
        ASSERT_TRUE(dialog);
        EXPECT_EQ(CheckedButton(dialog.get(), handshakingGroup), row.button);
    }
}

TEST(SettingsDialog, HandshakingIsReadBackFromItsButton) {
    for (const HandshakingRow& row : handshakingRows) {
        SCOPED_TRACE(row.handshaking);
        host::CommObject object;
        SetHandshaking(object, row.handshaking);
        EXPECT_EQ(PlaySettingsDialog(object, [](HWND hDialog) { Command(hDialog, IDOK); }), 1);
        EXPECT_EQ(GetHandshaking(object), row.readBack);
    }
}

struct ChoiceRow {
    Group group;
    int button;
    const char* settings;
    int handshaking;
};

// Each from "9600,e,7,2" without handshaking, one button chosen.
const ChoiceRow choiceRows[] = {
    {speedGroup, 11, "1200,e,7,2", 0},       {speedGroup, 12, "2400,e,7,2", 0},
    {speedGroup, 13, "4800,e,7,2", 0},       {speedGroup, 14, "9600,e,7,2", 0},
    {speedGroup, 15, "14400,e,7,2", 0},      {speedGroup, 16, "19200,e,7,2", 0},
    {speedGroup, 17, "28800,e,7,2", 0},      {speedGroup, 18, "38400,e,7,2", 0},
    {parityGroup, 41, "9600,n,7,2", 0},      {parityGroup, 42, "9600,o,7,2", 0},
    {parityGroup, 43, "9600,e,7,2", 0},      {parityGroup, 44, "9600,m,7,2", 0},
    {parityGroup, 45, "9600,s,7,2", 0},      {dataBitsGroup, 22, "9600,e,5,2", 0},
    {dataBitsGroup, 23, "9600,e,6,2", 0},    {dataBitsGroup, 24, "9600,e,7,2", 0},
    {dataBitsGroup, 25, "9600,e,8,2", 0},    {stopBitsGroup, 31, "9600,e,7,1", 0},
    {stopBitsGroup, 32, "9600,e,7,1.5", 0},  {stopBitsGroup, 33, "9600,e,7,2", 0},
    {handshakingGroup, 51, "9600,e,7,2", 1}, {handshakingGroup, 52, "9600,e,7,2", 2},
    {handshakingGroup, 53, "9600,e,7,2", 0},
};

TEST(SettingsDialog, OkAppliesTheButtons) {
    for (const ChoiceRow& row : choiceRows) {
        SCOPED_TRACE(row.button);
        host::CommObject object;
        SetSettings(object, "9600,e,7,2");
        SetHandshaking(object, 0);
        const auto user = [&row](HWND hDialog) {
            Choose(hDialog, row.group, row.button);
            Command(hDialog, IDOK);
        };
        EXPECT_EQ(PlaySettingsDialog(object, user), 1);
        EXPECT_EQ(SettingsOf(object), row.settings);
        EXPECT_EQ(GetHandshaking(object), row.handshaking);
    }
}

struct ReadBackRow {
    const char* settings;
    const char* readBack;
};

// A field that was left out comes back as what the line took in its place.
const ReadBackRow readBackRows[] = {
    {"115200,n,8,1", "38400,n,8,1"}, {"300,o,7,2", "38400,o,7,2"}, {",n,8,1", "38400,n,8,1"},
    {"9600,,8,1", "9600,n,8,1"},     {"9600,n,,1", "9600,n,8,1"},  {"9600,n,8,", "9600,n,8,1"},
};

TEST(SettingsDialog, ValuesWithoutAButtonAreReplacedByOk) {
    for (const ReadBackRow& row : readBackRows) {
        SCOPED_TRACE(row.settings);
        host::CommObject object;
        ASSERT_EQ(SetSettings(object, row.settings), 0);
        EXPECT_EQ(PlaySettingsDialog(object, [](HWND hDialog) { Command(hDialog, IDOK); }), 1);
        EXPECT_EQ(SettingsOf(object), row.readBack);
    }
}

void ChooseOthersThen(HWND hDialog, const std::function<void(HWND)>& leave) {
    Choose(hDialog, speedGroup, 12);
    Choose(hDialog, parityGroup, 43);
    Choose(hDialog, dataBitsGroup, 24);
    Choose(hDialog, stopBitsGroup, 33);
    Choose(hDialog, handshakingGroup, 51);
    leave(hDialog);
}

TEST(SettingsDialog, CancelChangesNothing) {
    const std::function<void(HWND)> ways[] = {
        [](HWND hDialog) { Command(hDialog, IDCANCEL); },
        [](HWND hDialog) { SendMessageA(hDialog, WM_CLOSE, 0, 0); },
    };
    for (const auto& leave : ways) {
        host::CommObject object;
        SetSettings(object, "115200,n,8,1");
        SetHandshaking(object, 4);
        EXPECT_EQ(PlaySettingsDialog(object, [&](HWND hDialog) { ChooseOthersThen(hDialog, leave); }), 0);
        EXPECT_EQ(SettingsOf(object), "115200,n,8,1");
        EXPECT_EQ(GetHandshaking(object), 4);
    }
}

// The posted OK is only seen by a dialog that is still open.
TEST(SettingsDialog, OtherCommandsLeaveItOpen) {
    host::CommObject object;
    SetSettings(object, "9600,n,8,1");
    std::string settingsBeforeOk;
    const auto user = [&](HWND hDialog) {
        Choose(hDialog, speedGroup, 11);
        Command(hDialog, 11);
        Command(hDialog, 53);
        settingsBeforeOk = SettingsOf(object);
        PostMessageA(hDialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    };
    EXPECT_EQ(PlaySettingsDialog(object, user), 1);
    EXPECT_EQ(settingsBeforeOk, "9600,n,8,1");
    EXPECT_EQ(SettingsOf(object), "1200,n,8,1");
}

TEST(SettingsDialog, UserWordHoldsTheLowHalfOfTheHandle) {
    host::CommObject first;
    host::CommObject second;
    for (const HWND object : {first.Handle(), second.Handle()}) {
        const Dialog dialog = MakeSettingsDialog(object);
        ASSERT_TRUE(dialog);
        EXPECT_EQ(GetWindowLongPtrA(dialog.get(), GWLP_USERDATA), LOWORD(object));
    }
}

TEST(SettingsDialog, OkAppliesToItsOwnObject) {
    host::CommObject first;
    host::CommObject second;
    SetSettings(first, "1200,n,8,1");
    SetSettings(second, "2400,n,8,1");
    const auto user = [](HWND hDialog) {
        Choose(hDialog, speedGroup, 16);
        Command(hDialog, IDOK);
    };
    EXPECT_EQ(PlaySettingsDialog(second, user), 1);
    EXPECT_EQ(SettingsOf(first), "1200,n,8,1");
    EXPECT_EQ(SettingsOf(second), "19200,n,8,1");
}

TEST(SettingsDialog, ObjectThatDiesUnderItIsLeftAlone) {
    host::CommObject survivor;
    SetSettings(survivor, "1200,n,8,1");
    auto object = std::make_unique<host::CommObject>();
    const auto user = [&object](HWND hDialog) {
        object.reset();
        Command(hDialog, IDOK);
    };
    EXPECT_EQ(PlaySettingsDialog(object->Handle(), user), 1);
    EXPECT_EQ(SettingsOf(survivor), "1200,n,8,1");
}

TEST(SettingsDialog, WithoutAnObjectThereIsNoDialog) {
    EXPECT_EQ(PortSettingsDialog(nullptr, nullptr), 0);
    EXPECT_EQ(PortSettingsDialog(GetDesktopWindow(), nullptr), 0);
}

class SettingsDialogOnLine : public host::LineTest {};

TEST_F(SettingsDialogOnLine, OkReachesTheOpenDevice) {
    host::CommObject object;
    ASSERT_EQ(object.Open(host::nearPort, "9600,n,8,1"), "");
    const auto user = [](HWND hDialog) {
        Choose(hDialog, speedGroup, 16);
        Choose(hDialog, handshakingGroup, 51);
        Command(hDialog, IDOK);
    };
    EXPECT_EQ(PlaySettingsDialog(object, user), 1);
    DCB block = {};
    block.DCBlength = sizeof block;
    ASSERT_TRUE(GetCommState(GetCommID(object), &block));
    EXPECT_EQ(block.BaudRate, 19200u);
    EXPECT_TRUE(block.fInX);
    EXPECT_TRUE(block.fOutX);
}

constexpr int textControl = 1003;
constexpr int frameControl = 1005;

const Template& MisuseTemplate() {
    static const Template layout = [] {
        Template made;
        for (const int control : {1, 1000, 1001})
            made.Add(buttonClass, control, BS_PUSHBUTTON | WS_TABSTOP);
        made.Add(staticClass, textControl, SS_LEFT | SS_NOPREFIX);
        made.Add(staticClass, frameControl, SS_OWNERDRAW);
        return made;
    }();
    return layout;
}

Dialog MakeMisuseDialog(const char* text) {
    return MakeDialog(MisuseTemplate(), BugTrapDlgProc, text);
}

std::string ShownText(HWND hDialog) {
    char text[1000] = {};
    GetDlgItemTextA(hDialog, textControl, text, sizeof text);
    return text;
}

LOGFONTA FontOf(HWND hWnd) {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(hWnd, WM_GETFONT, 0, 0)), sizeof font, &font);
    return font;
}

const char* const expectedTexts[] = {
    "A Tarn Link Objects function was called using an object that has not yet been created, or that was "
    "destroyed.",
    "A Tarn Link Objects function was called using an invalid object or an object that was destroyed",
    "Two Tarn Link Objects functions that wait for something to happen have been called recursively.\r\n\r\n"
    "Please check any event or timer code in your program.",
    "A Tarn Link Objects input function has been called while AutoReceive is set.  Because two functions "
    "will 'compete' for data coming from the communications port, you will get incorrect results.",
};

TEST(BugTrapDialog, ShowsTheTextThatItIsGiven) {
    ASSERT_EQ(misuseTexts.size(), std::size(expectedTexts));
    for (size_t i = 0; i < misuseTexts.size(); ++i) {
        const Dialog dialog = MakeMisuseDialog(misuseTexts[i]);
        ASSERT_TRUE(dialog);
        EXPECT_EQ(ShownText(dialog.get()), expectedTexts[i]);
    }
}

TEST(BugTrapDialog, TextHasTheDialogsFontAtNormalWeight) {
    const Dialog dialog = MakeMisuseDialog(misuseTexts[0]);
    ASSERT_TRUE(dialog);
    const LOGFONTA whole = FontOf(dialog.get());
    const LOGFONTA text = FontOf(GetDlgItem(dialog.get(), textControl));
    ASSERT_EQ(whole.lfWeight, FW_BOLD);
    EXPECT_EQ(text.lfWeight, FW_NORMAL);
    EXPECT_STREQ(text.lfFaceName, whole.lfFaceName);
    EXPECT_EQ(text.lfHeight, whole.lfHeight);
    EXPECT_EQ(text.lfItalic, whole.lfItalic);
    EXPECT_EQ(FontOf(GetDlgItem(dialog.get(), 1)).lfWeight, FW_BOLD) << "only the text is changed";
}

TEST(BugTrapDialog, IsCentredOnTheScreen) {
    const Dialog dialog = MakeMisuseDialog(misuseTexts[0]);
    ASSERT_TRUE(dialog);
    RECT box = {};
    ASSERT_TRUE(GetWindowRect(dialog.get(), &box));
    EXPECT_LE(std::abs(box.left + box.right - GetSystemMetrics(SM_CXSCREEN)), 1);
    EXPECT_LE(std::abs(box.top + box.bottom - GetSystemMetrics(SM_CYSCREEN)), 1);
}

struct AnswerRow {
    int control;
    INT_PTR result;
};

TEST(BugTrapDialog, ButtonsEndIt) {
    constexpr AnswerRow rows[] = {{1, 0}, {1000, 0}, {1001, 1}};
    for (const AnswerRow& row : rows) {
        SCOPED_TRACE(row.control);
        const auto user = [&row](HWND hDialog) { Command(hDialog, row.control); };
        EXPECT_EQ(ModalRun::Play(MisuseTemplate(), BugTrapDlgProc, misuseTexts[0], user), row.result);
    }
}

// After "ignore" too: nothing reads the flag.
TEST(BugTrapDialog, ShowsAgainAfterIgnore) {
    const auto ignore = [](HWND hDialog) { Command(hDialog, 1000); };
    ASSERT_EQ(ModalRun::Play(MisuseTemplate(), BugTrapDlgProc, misuseTexts[0], ignore), 0);
    std::string shown;
    const auto debug = [&shown](HWND hDialog) {
        shown = ShownText(hDialog);
        Command(hDialog, 1001);
    };
    EXPECT_EQ(ModalRun::Play(MisuseTemplate(), BugTrapDlgProc, misuseTexts[1], debug), 1);
    EXPECT_EQ(shown, misuseTexts[1]);
}

// A memory picture of one colour, for a dialog to draw on.
class Canvas {
  public:
    static constexpr int width = 40;
    static constexpr int height = 20;
    static constexpr COLORREF blank = RGB(255, 0, 255);

    Canvas() : hDC_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO information = {};
        information.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(hDC_, &information, DIB_RGB_COLORS, &bits, nullptr, 0);
        former_ = SelectObject(hDC_, bitmap_);
        const RECT all = {0, 0, width, height};
        const HBRUSH brush = CreateSolidBrush(blank);
        FillRect(hDC_, &all, brush);
        DeleteObject(brush);
    }
    ~Canvas() {
        SelectObject(hDC_, former_);
        DeleteObject(bitmap_);
        DeleteDC(hDC_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    COLORREF At(int x, int y) const { return GetPixel(hDC_, x, y); }

    // Pixels that are blank no more, in the box or out of it.
    int Changed(const RECT& box, bool inside) const {
        int changed = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (static_cast<bool>(PtInRect(&box, {x, y})) == inside)
                    changed += At(x, y) != blank;
        return changed;
    }

    void LetDraw(HWND hDialog, int control, const RECT& box) const {
        DRAWITEMSTRUCT item = {};
        item.CtlType = ODT_STATIC;
        item.CtlID = static_cast<UINT>(control);
        item.itemAction = ODA_DRAWENTIRE;
        item.hwndItem = GetDlgItem(hDialog, control);
        item.hDC = hDC_;
        item.rcItem = box;
        SendMessageA(hDialog, WM_DRAWITEM, static_cast<WPARAM>(control), reinterpret_cast<LPARAM>(&item));
    }

  private:
    HDC hDC_;
    HBITMAP bitmap_;
    HGDIOBJ former_;
};

constexpr RECT frameBox = {5, 4, 35, 16};

TEST(BugTrapDialog, DrawsASunkenFrame) {
    const Dialog dialog = MakeMisuseDialog(misuseTexts[0]);
    ASSERT_TRUE(dialog);
    const Canvas canvas;
    canvas.LetDraw(dialog.get(), frameControl, frameBox);
    EXPECT_GT(canvas.Changed(frameBox, true), 0);
    EXPECT_EQ(canvas.Changed(frameBox, false), 0);
    const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW);
    EXPECT_EQ(canvas.At(frameBox.left, frameBox.top), shadow);
    EXPECT_EQ(canvas.At(frameBox.right - 1, frameBox.bottom - 1), GetSysColor(COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(canvas.At(Canvas::width / 2, Canvas::height / 2), shadow) << "by the brush";
}

TEST(BugTrapDialog, DrawsNoOtherControl) {
    const Dialog dialog = MakeMisuseDialog(misuseTexts[0]);
    ASSERT_TRUE(dialog);
    const Canvas canvas;
    canvas.LetDraw(dialog.get(), textControl, frameBox);
    EXPECT_EQ(canvas.Changed(frameBox, true), 0);
}

TEST(BugTrapDialog, FontIsFreedWithIt) {
    Dialog dialog = MakeMisuseDialog(misuseTexts[0]);
    ASSERT_TRUE(dialog);
    const auto font =
        reinterpret_cast<HFONT>(SendDlgItemMessageA(dialog.get(), textControl, WM_GETFONT, 0, 0));
    ASSERT_EQ(GetObjectType(font), static_cast<DWORD>(OBJ_FONT));
    dialog.reset();
    EXPECT_EQ(GetObjectType(font), 0u);
}

// Where the system keeps no count, the slots are tried: the low half of a handle names its slot.
int GdiObjects() {
    if (const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS))
        return static_cast<int>(count);
    int count = 0;
    for (UINT_PTR slot = 1; slot <= 0xffff; ++slot)
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(slot)) != 0;
    return count;
}

bool GdiObjectsAreCounted() {
    const int before = GdiObjects();
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    const int with = GdiObjects();
    DeleteObject(brush);
    return with == before + 1 && GdiObjects() == before;
}

INT_PTR CALLBACK PlainDialogProc(HWND, UINT message, WPARAM, LPARAM) {
    return message == WM_INITDIALOG;
}

TEST(BugTrapDialog, FontAndBothBrushesAreFreedWithIt) {
    if (!GdiObjectsAreCounted())
        GTEST_SKIP() << "the system does not tell how many drawing objects there are";
    MakeMisuseDialog(misuseTexts[0]).reset(); // what the first dialog of a process leaves cached
    const int none = GdiObjects();
    Dialog plain = MakeDialog(MisuseTemplate(), PlainDialogProc, nullptr);
    const int withPlain = GdiObjects();
    plain.reset();
    ASSERT_EQ(GdiObjects(), none);

    Dialog dialog = MakeMisuseDialog(misuseTexts[0]);
    EXPECT_EQ(GdiObjects(), withPlain + 3);
    dialog.reset();
    EXPECT_EQ(GdiObjects(), none);
}

} // namespace
