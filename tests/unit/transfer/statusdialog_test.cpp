// The status dialog, with real messages: what it shows, how it is cancelled, and who may write into it.
#include "transfer/statusdialog.h"

#include "core/comobject.h"
#include "support/host.h"
#include "transfer/Tc-xfer.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <cstring>
#include <functional>
#include <memory>
#include <thread>

namespace {

constexpr int unnamed = 0xFFFF;

struct WindowCloser {
    using pointer = HWND;
    void operator()(HWND hWnd) const { DestroyWindow(hWnd); }
};
using Window = std::unique_ptr<HWND, WindowCloser>;

std::string TextOf(HWND hWnd) {
    char text[256] = {};
    GetWindowTextA(hWnd, text, sizeof text);
    return text;
}

std::string ItemText(HWND hDlg, int item) {
    return TextOf(GetDlgItem(hDlg, item));
}

bool IsItemEnabled(HWND hDlg, int item) {
    return IsWindowEnabled(GetDlgItem(hDlg, item));
}

// What a dialog's procedure was told, with its answer and the state that it found.
struct Told {
    HWND hDlg;
    UINT message;
    WPARAM wParam;
    INT_PTR answer;
    LONG_PTR userWord;
};
std::vector<Told> told;

INT_PTR CALLBACK Recorder(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam) {
    const LONG_PTR userWord = GetWindowLongPtrA(hDlg, DWLP_USER);
    const INT_PTR answer = DlgProc(hDlg, message, wParam, lParam);
    told.push_back({hDlg, message, wParam, answer, userWord});
    return answer;
}

const Told* FindTold(UINT message, WPARAM wParam) {
    for (const Told& one : told)
        if (one.message == message && one.wParam == wParam)
            return &one;
    return nullptr;
}

class StatusDialog : public testing::Test {
  protected:
    StatusDialog() {
        told.clear();
        transfer.lpComCtl = &record;
    }

    HWND Open(int nDirection = XferUpload) {
        dialog.reset(CreateStatusDialog(nullptr, Recorder));
        transfer.hDlg = dialog.get();
        transfer.nDirection = nDirection;
        OpenStatusDialog(transfer);
        return dialog.get();
    }

    // The wider form, which nobody opens but whose items the worker names.
    HWND OpenWide(int nDirection) {
        dialog.reset(
            CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(StatusTemplateWide), nullptr, DlgProc, 0));
        for (const int item : {288, 289, 290, 291, 294, 295})
            SetDlgItemTextA(dialog.get(), item, "from before");
        transfer.hDlg = dialog.get();
        transfer.nDirection = nDirection;
        OpenStatusDialog(transfer);
        return dialog.get();
    }

    // As the worker does, while this thread runs its messages. False: it does not come to an end.
    static bool OnWorker(const std::function<void()>& work) {
        std::atomic<bool> done{false};
        std::thread worker([&] {
            work();
            done = true;
        });
        const bool ended = host::PumpUntil([&] { return done.load(); });
        if (ended)
            worker.join();
        else
            worker.detach();
        return ended;
    }

    COMCTL record;
    TRANSFER transfer;
    Window dialog;
};

// The templates

std::string ResourceBytes(int id, const char* type) {
    const HRSRC found = FindResourceA(ThisModule(), MAKEINTRESOURCEA(id), type);
    const HGLOBAL loaded = found ? LoadResource(ThisModule(), found) : nullptr;
    if (!loaded)
        return "";
    return {static_cast<const char*>(LockResource(loaded)), SizeofResource(ThisModule(), found)};
}

// Some controls keep no text: theirs is seen in the template alone.
std::wstring Template(int id) {
    const std::string bytes = ResourceBytes(id, MAKEINTRESOURCEA(5)); // RT_DIALOG
    std::wstring words(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(words.data(), bytes.data(), words.size() * sizeof(wchar_t));
    return words;
}

struct Item {
    int id;
    const char* windowClass;
    const char* text;
};

struct Form {
    const char* name;
    int id;
    SIZE size; // dialog units
    std::vector<Item> items;
};

std::vector<Item> ItemsOf(HWND hDlg) {
    static std::vector<std::string> texts;
    texts.clear();
    std::vector<Item> items;
    for (HWND hItem = GetWindow(hDlg, GW_CHILD); hItem; hItem = GetWindow(hItem, GW_HWNDNEXT)) {
        char name[64] = {};
        GetClassNameA(hItem, name, sizeof name);
        items.push_back({static_cast<int>(GetWindowLongPtrA(hItem, GWLP_ID)) & unnamed, nullptr, nullptr});
        texts.emplace_back(name);
        texts.emplace_back(TextOf(hItem));
    }
    for (size_t i = 0; i < items.size(); ++i) {
        items[i].windowClass = texts[2 * i].c_str();
        items[i].text = texts[2 * i + 1].c_str();
    }
    return items;
}

std::string Named(const Item& item) {
    return std::to_string(item.id) + " " + item.windowClass + " \"" + item.text + "\"";
}

std::vector<std::string> Sorted(const std::vector<Item>& items) {
    std::vector<std::string> names;
    for (const Item& item : items)
        names.push_back(Named(item));
    std::sort(names.begin(), names.end());
    return names;
}

const std::vector<Item> statusItems = {
    {236, ANIMATE_CLASSA, ""},
    {237, PROGRESS_CLASSA, "Progress1"},
    {103, "Static", ""},
    {238, "Button", "Transfer Details"},
    {unnamed, "Static", "Transferred:"},
    {101, "Static", ""},
    {unnamed, "Static", "Total Size:"},
    {102, "Static", ""},
    {unnamed, "Static", "Time Elapsed:"},
    {104, "Static", ""},
    {unnamed, "Static", "Block Size:"},
    {105, "Static", ""},
    {2, "Button", "Cancel"},
};

const std::vector<Item> wideItems = {
    {287, "Static", "Transfer Complete"},
    {288, "Static", "Downloading"},
    {294, "Static", "Filename"},
    {unnamed, "Static", "Estimated time left:"},
    {289, "Static", ""},
    {295, "Static", "Download to:"},
    {290, "Static", ""},
    {unnamed, "Static", "Transfer rate:"},
    {291, "Static", ""},
    {281, "Button", "&Close this dialog when the transfer completes"},
    {292, "Button", "Open &Folder"},
    {293, "Button", "&Open"},
};

const Form forms[] = {
    {"status", 1, {187, 146}, statusItems},
    {"moved", 2, {187, 146}, statusItems},
    {"wide", 3, {246, 147}, wideItems},
};

INT_PTR CALLBACK AnswerNothing(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

Window MakeForm(int id) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_ANIMATE_CLASS | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    return Window(CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(id), nullptr, AnswerNothing, 0));
}

RECT BoxOf(HWND hDlg, HWND hItem) {
    RECT box = {};
    GetWindowRect(hItem, &box);
    MapWindowPoints(nullptr, hDlg, reinterpret_cast<POINT*>(&box), 2);
    return box;
}

class StatusForms : public testing::TestWithParam<Form> {};

TEST_P(StatusForms, HasItsItems) {
    const Window form = MakeForm(GetParam().id);
    ASSERT_TRUE(form.get()) << GetLastError();
    EXPECT_EQ(TextOf(form.get()), "File Transfer");
    EXPECT_EQ(Sorted(ItemsOf(form.get())), Sorted(GetParam().items));
    EXPECT_EQ(Template(GetParam().id).find(L"Animate1") != std::wstring::npos, GetParam().id != 3);
}

TEST_P(StatusForms, HasItsSizeAndHoldsItsItemsApart) {
    const Window form = MakeForm(GetParam().id);
    RECT expected = {0, 0, GetParam().size.cx, GetParam().size.cy};
    MapDialogRect(form.get(), &expected);
    RECT client = {};
    GetClientRect(form.get(), &client);
    EXPECT_TRUE(EqualRect(&client, &expected)) << client.right << " by " << client.bottom;
    for (HWND hItem = GetWindow(form.get(), GW_CHILD); hItem; hItem = GetWindow(hItem, GW_HWNDNEXT)) {
        const RECT box = BoxOf(form.get(), hItem);
        RECT common = {};
        IntersectRect(&common, &box, &client);
        EXPECT_TRUE(EqualRect(&common, &box)) << TextOf(hItem) << " sticks out";
        for (HWND hNext = GetWindow(hItem, GW_HWNDNEXT); hNext; hNext = GetWindow(hNext, GW_HWNDNEXT)) {
            const RECT next = BoxOf(form.get(), hNext);
            const bool apart = GetDlgCtrlID(hItem) == Item_Details || !IntersectRect(&common, &box, &next);
            EXPECT_TRUE(apart) << TextOf(hItem) << " over " << TextOf(hNext);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Templates, StatusForms, testing::ValuesIn(forms),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(StatusDialog, SecondFormHasItsItemsElsewhere) {
    const Window first = MakeForm(StatusTemplate);
    const Window second = MakeForm(StatusTemplateMoved);
    int moved = 0;
    for (const int item : {Item_Animation, Item_Progress, Item_Status, Item_Details, IDCANCEL}) {
        const RECT one = BoxOf(first.get(), GetDlgItem(first.get(), item));
        const RECT other = BoxOf(second.get(), GetDlgItem(second.get(), item));
        moved += !EqualRect(&one, &other);
    }
    EXPECT_GE(moved, 1);
    EXPECT_LT(moved, 5);
}

TEST_F(StatusDialog, BarGoesToAHundred) {
    const HWND hDlg = Open();
    PBRANGE range = {};
    SendDlgItemMessageA(hDlg, Item_Progress, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    EXPECT_EQ(range.iLow, 0);
    EXPECT_EQ(range.iHigh, 100);
    EXPECT_EQ(SendDlgItemMessageA(hDlg, Item_Progress, PBM_GETPOS, 0, 0), 0);
}

TEST_F(StatusDialog, NameOfAFileKeepsItsAmpersand) {
    const HWND hDlg = Open();
    for (const int item : {Item_BytesDone, Item_FileSize, Item_Status, Item_Elapsed, Item_BlockSize})
        EXPECT_TRUE(GetWindowLongA(GetDlgItem(hDlg, item), GWL_STYLE) & SS_NOPREFIX) << item;
}

// The animation

DWORD LongAt(const std::string& bytes, size_t at) {
    DWORD value = 0;
    if (at + sizeof value <= bytes.size())
        std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

TEST_F(StatusDialog, AnimationIsSmallSilentAndMoves) {
    const std::string file = ResourceBytes(203, "AVI");
    ASSERT_EQ(file.substr(0, 4), "RIFF");
    EXPECT_EQ(LongAt(file, 4) + 8, file.size());
    EXPECT_LE(file.size(), 60000u);
    const size_t header = file.find("avih");
    ASSERT_NE(header, std::string::npos);
    const DWORD frames = LongAt(file, header + 8 + 16);
    EXPECT_GE(frames, 8u);
    EXPECT_EQ(LongAt(file, header + 8 + 24), 1u) << "streams";
    EXPECT_NE(file.find("vidsDIB "), std::string::npos) << "pictures that are not compressed";
    std::map<std::string, int> pictures;
    size_t at = file.find("movi");
    ASSERT_NE(at, std::string::npos);
    const DWORD size = LongAt(file, at + 8);
    for (at += 4; file.compare(at, 4, "00db") == 0; at += 8 + size)
        ++pictures[file.substr(at + 8, size)];
    EXPECT_EQ(pictures.size(), frames) << "each differs from the others";
}

// A window's procedure is put before its own for as long as the watch lives.
class Watch {
  public:
    using Before = std::function<void(UINT message)>;

    Watch(HWND hWnd, Before before) : hWnd_(hWnd), before_(std::move(before)) {
        current = this;
        procedure_ = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    }
    ~Watch() { SetWindowLongPtrA(hWnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure_)); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

  private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
        current->before_(message);
        return CallWindowProcA(current->procedure_, hWnd, message, wParam, lParam);
    }

    static inline Watch* current = nullptr;

    HWND hWnd_;
    Before before_;
    WNDPROC procedure_;
};

TEST_F(StatusDialog, AnimationPlaysUntilDestroyClosesIt) {
    const HWND hDlg = Open();
    const Told* first =
        FindTold(WM_INITDIALOG, reinterpret_cast<WPARAM>(GetNextDlgTabItem(hDlg, nullptr, FALSE)));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->answer, TRUE);
    int turns = 0;
    const Watch watch(GetDlgItem(hDlg, Item_Animation), [&](UINT message) { turns += message == WM_TIMER; });
    EXPECT_TRUE(host::PumpUntil([&] { return turns >= 10; })) << "more than its frames: over and over";
    EXPECT_EQ(DlgProc(hDlg, WM_DESTROY, 0, 0), TRUE);
    EXPECT_FALSE(SendDlgItemMessageA(hDlg, Item_Animation, ACM_PLAY, 1, MAKELPARAM(0, -1)))
        << "nothing is open";
    host::Pump(50);
    turns = 0;
    host::Pump(300);
    EXPECT_EQ(turns, 0);
}

// Its life

TEST_F(StatusDialog, IsMadeHiddenForItsOwner) {
    const Window owner(
        CreateWindowExA(0, "Static", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr));
    dialog.reset(CreateStatusDialog(owner.get(), DlgProc));
    ASSERT_TRUE(dialog.get());
    EXPECT_EQ(GetWindow(dialog.get(), GW_OWNER), owner.get());
    EXPECT_FALSE(IsWindowVisible(dialog.get()));
    EXPECT_EQ(GetWindowLongPtrA(dialog.get(), DWLP_USER), 0);
    EXPECT_TRUE(IsItemEnabled(dialog.get(), IDCANCEL));
}

TEST_F(StatusDialog, ShowsItselfOnceTheRecordIsLent) {
    const HWND hDlg = Open();
    EXPECT_TRUE(IsWindowVisible(hDlg));
    EXPECT_EQ(GetWindowLongPtrA(hDlg, DWLP_USER), reinterpret_cast<LONG_PTR>(&transfer));
    const Told* shown = FindTold(WM_SHOWWINDOW, TRUE);
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown->userWord, reinterpret_cast<LONG_PTR>(&transfer)) << "a click can't come first";
}

TEST_F(StatusDialog, IsDestroyed) {
    const HWND hDlg = Open();
    DestroyStatusDialog(dialog.release());
    EXPECT_FALSE(IsWindow(hDlg));
    ASSERT_TRUE(FindTold(WM_DESTROY, 0));
    EXPECT_EQ(FindTold(WM_DESTROY, 0)->answer, TRUE);
}

struct DirectionRow {
    int nDirection;
    const char* direction;
    const char* place;
};

TEST_F(StatusDialog, TellsTheDirectionWhereItHasItems) {
    const DirectionRow rows[] = {{XferUpload, "Uploading", "Upload from:"},
                                 {XferDownload, "Downloading", "Download to:"}};
    for (const DirectionRow& row : rows) {
        const HWND hDlg = OpenWide(row.nDirection);
        ASSERT_TRUE(hDlg);
        EXPECT_EQ(ItemText(hDlg, 294), row.direction);
        EXPECT_EQ(ItemText(hDlg, 295), row.place);
        for (const int item : {288, 289, 290, 291})
            EXPECT_EQ(ItemText(hDlg, item), "") << item;
        EXPECT_FALSE(IsItemEnabled(hDlg, 293));
        EXPECT_TRUE(IsItemEnabled(hDlg, 292));
        EXPECT_EQ(ItemText(hDlg, 287), "Transfer Complete");
        EXPECT_TRUE(IsWindowVisible(hDlg));
    }
}

// Cancelling

struct Wish {
    const char* name;
    std::function<INT_PTR(HWND)> send; // gives the procedure's answer
};

INT_PTR AnswerTo(HWND hDlg, UINT message, WPARAM wParam) {
    SendMessageA(hDlg, message, wParam, 0);
    const Told* one = FindTold(message, wParam);
    return one ? one->answer : -1;
}

const Wish wishes[] = {
    {"its close box", [](HWND hDlg) { return AnswerTo(hDlg, WM_CLOSE, 0); }},
    {"Escape", [](HWND hDlg) { return AnswerTo(hDlg, WM_COMMAND, MAKEWPARAM(IDCANCEL, 0)); }},
    {"a key's accelerator", [](HWND hDlg) { return AnswerTo(hDlg, WM_COMMAND, MAKEWPARAM(IDCANCEL, 1)); }},
    {"the button",
     [](HWND hDlg) {
         SendDlgItemMessageA(hDlg, IDCANCEL, BM_CLICK, 0, 0);
         const Told* one = FindTold(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED));
         return one ? one->answer : -1;
     }},
};

TEST_F(StatusDialog, EveryWishToCancelAborts) {
    for (const Wish& wish : wishes) {
        SCOPED_TRACE(wish.name);
        record.bAbortTransfer = 0;
        const HWND hDlg = Open();
        told.clear();
        EXPECT_EQ(wish.send(hDlg), TRUE);
        EXPECT_EQ(record.bAbortTransfer, 1);
        EXPECT_FALSE(IsItemEnabled(hDlg, IDCANCEL));
        EXPECT_EQ(ItemText(hDlg, 103), "Terminating transfer...");
        EXPECT_TRUE(IsWindowVisible(hDlg)) << "the worker closes it";
    }
}

TEST_F(StatusDialog, WithoutARecordNothingIsCancelled) {
    for (const Wish& wish : wishes) {
        SCOPED_TRACE(wish.name);
        dialog.reset(CreateStatusDialog(nullptr, Recorder));
        told.clear();
        EXPECT_EQ(wish.send(dialog.get()), FALSE);
        EXPECT_EQ(record.bAbortTransfer, 0);
        EXPECT_TRUE(IsItemEnabled(dialog.get(), IDCANCEL));
        EXPECT_EQ(ItemText(dialog.get(), 103), "");
        EXPECT_TRUE(IsWindow(dialog.get()));
    }
}

TEST_F(StatusDialog, OtherMessagesAreNotItsOwn) {
    const HWND hDlg = Open();
    const std::pair<UINT, WPARAM> others[] = {
        {WM_COMMAND, IDOK},
        {WM_COMMAND, Item_Progress},
        {WM_COMMAND, MAKEWPARAM(Item_Animation, ACN_STOP)},
        {WM_SIZE, 0},
        {WM_NOTIFY, IDCANCEL},
        {WM_SYSCOMMAND, SC_MOVE},
        {WM_USER, 0},
        {WM_TIMER, 1},
        {WM_QUERYENDSESSION, 0},
        {WM_COMMAND, Item_Open},
    };
    for (const auto& [message, wParam] : others)
        EXPECT_EQ(DlgProc(hDlg, message, wParam, 0), FALSE) << message << ", " << wParam;
    EXPECT_EQ(record.bAbortTransfer, 0);
    EXPECT_TRUE(IsItemEnabled(hDlg, IDCANCEL));
}

TEST_F(StatusDialog, SecondWishChangesNothingMore) {
    const HWND hDlg = Open();
    for (const Wish& wish : wishes) {
        told.clear();
        EXPECT_EQ(wish.send(hDlg), TRUE) << wish.name;
    }
    EXPECT_FALSE(IsItemEnabled(hDlg, IDCANCEL));
    EXPECT_EQ(ItemText(hDlg, 103), "Terminating transfer...");
}

TEST_F(StatusDialog, TerminatingStaysWhileTheProtocolGoesOnTalking) {
    const HWND hDlg = Open();
    ShowItem(transfer, Item_Status, "Sending block 3");
    SendDlgItemMessageA(hDlg, IDCANCEL, BM_CLICK, 0, 0);
    int taken = 0;
    const Watch watch(GetDlgItem(hDlg, Item_Status), [&](UINT message) { taken += message == WM_SETTEXT; });
    for (const char* text : {"Receive timeout", ""}) {
        ShowItem(transfer, Item_Status, text);
        EXPECT_EQ(ItemText(hDlg, 103), "Terminating transfer...");
    }
    EXPECT_EQ(taken, 0) << "it does not even flicker";
    ShowItem(transfer, Item_BytesDone, "4096 bytes");
    EXPECT_EQ(ItemText(hDlg, 101), "4096 bytes") << "counts go on";
}

TEST_F(StatusDialog, TerminatingWinsOverATextThatIsOnItsWay) {
    const HWND hDlg = Open();
    bool pressed = false;
    const Watch watch(GetDlgItem(hDlg, Item_Status), [&](UINT message) {
        if (message != WM_SETTEXT || pressed)
            return;
        pressed = true;
        SendMessageA(hDlg, WM_CLOSE, 0, 0);
    });
    ShowItem(transfer, Item_Status, "Sending block 3");
    EXPECT_EQ(record.bAbortTransfer, 1);
    EXPECT_EQ(ItemText(hDlg, Item_Status), "Terminating transfer...");
}

// What the worker writes

struct TextRow {
    const char* name;
    std::string text;
};

TEST_F(StatusDialog, ShowsTexts) {
    const TextRow rows[] = {{"plain", "1024 bytes"},
                            {"a format", "100%s of %n"},
                            {"other letters", "na\xefve"},
                            {"emptied", ""},
                            {"as long as what is compared", std::string(79, 'a')},
                            {"longer", std::string(79, 'a') + "b"},
                            {"longer, with another end", std::string(79, 'a') + "c"},
                            {"cut to what was its start", std::string(79, 'a')}};
    const HWND hDlg = Open();
    for (const int item : {Item_Status, Item_BytesDone, Item_FileSize, Item_Elapsed, Item_BlockSize}) {
        for (const TextRow& row : rows) {
            ShowItem(transfer, item, row.text.c_str());
            EXPECT_EQ(ItemText(hDlg, item), row.text) << item << ", " << row.name;
        }
    }
    ShowTitle(transfer, "Sending a.txt (ZModem)");
    EXPECT_EQ(TextOf(hDlg), "Sending a.txt (ZModem)");
}

TEST_F(StatusDialog, ShowsPercent) {
    const HWND hDlg = Open();
    const std::pair<int, int> rows[] = {{0, 0}, {1, 1}, {50, 50}, {100, 100}, {101, 100}, {-3, 0}, {7, 7}};
    for (const auto& [percent, shown] : rows) {
        ShowPercent(transfer, percent);
        EXPECT_EQ(SendDlgItemMessageA(hDlg, Item_Progress, PBM_GETPOS, 0, 0), shown) << percent;
    }
}

TEST_F(StatusDialog, SameTextIsNotSentTwice) {
    const HWND hDlg = Open();
    int taken = 0;
    const Watch watch(GetDlgItem(hDlg, Item_BlockSize),
                      [&](UINT message) { taken += message == WM_SETTEXT; });
    for (const char* text : {"1024", "1024", "1024", "128", "1024"})
        ShowItem(transfer, Item_BlockSize, text);
    EXPECT_EQ(taken, 3);
    EXPECT_EQ(ItemText(hDlg, Item_BlockSize), "1024");
}

TEST_F(StatusDialog, WithoutADialogNothingIsTouched) {
    transfer.nDirection = XferUpload;
    SetLastError(ERROR_SUCCESS);
    OpenStatusDialog(transfer);
    ShowItem(transfer, Item_Status, "nowhere");
    ShowItem(transfer, Item_BytesDone, "nowhere");
    ShowTitle(transfer, "nowhere");
    ShowPercent(transfer, 50);
    DestroyStatusDialog(nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS}) << "no call that fails";
}

TEST_F(StatusDialog, WorkerFillsItFromItsOwnThread) {
    dialog.reset(CreateStatusDialog(nullptr, Recorder));
    transfer.hDlg = dialog.get();
    transfer.nDirection = XferDownload;
    ASSERT_TRUE(OnWorker([&] {
        OpenStatusDialog(transfer);
        ShowTitle(transfer, "Receiving a.txt (YModem)");
        for (int block = 1; block <= 64; ++block) {
            ShowItem(transfer, Item_BytesDone, (std::to_string(block * 1024) + " bytes").c_str());
            ShowItem(transfer, Item_BlockSize, "1024");
            ShowPercent(transfer, block);
        }
    }));
    EXPECT_TRUE(IsWindowVisible(dialog.get()));
    EXPECT_EQ(TextOf(dialog.get()), "Receiving a.txt (YModem)");
    EXPECT_EQ(ItemText(dialog.get(), 101), "65536 bytes");
    EXPECT_EQ(ItemText(dialog.get(), 105), "1024");
    EXPECT_EQ(SendDlgItemMessageA(dialog.get(), 237, PBM_GETPOS, 0, 0), 64);
}

// The two requests that stand between the worker and the dialog

TEST_F(StatusDialog, RequestsMakeAndDestroyIt) {
    const host::CommObject object;
    const LRESULT made = xfRequest(object, Request_CreateDialog, reinterpret_cast<LPARAM>(DlgProc));
    const auto hDlg = reinterpret_cast<HWND>(made);
    ASSERT_TRUE(IsWindow(hDlg));
    EXPECT_EQ(reinterpret_cast<DLGPROC>(GetWindowLongPtrA(hDlg, DWLP_DLGPROC)), &DlgProc);
    xfRequest(object, Request_DestroyDialog, made);
    EXPECT_FALSE(IsWindow(hDlg));
}

} // namespace
