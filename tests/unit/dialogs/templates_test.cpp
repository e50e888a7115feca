// The dialogs' templates: what is on them, that it is found by keys, that nothing lies over something else
// and no text is cut.
#include "dialogtest.h"

#include "core/comobject.h"

#include <commctrl.h>

#include <algorithm>

using namespace dialogs;

namespace {

constexpr int unnamed = 0xFFFF;

struct Item {
    int id;
    const char* windowClass;
    const char* text;
};

struct Label {
    const char* text;
    int item; // that its letter leads to
};

struct Form {
    const char* name;
    int id;
    const char* title;
    SIZE size; // dialog units
    int defaultButton;
    std::vector<Item> items;
    std::vector<Label> labels;
    std::vector<int> tabs; // in their order, from the first one
};

const Form forms[] = {
    {"Dial", 210, "Dial", {215, 42}, IDCANCEL, {{246, "Static", ""}, {2, "Button", "Cancel"}}, {}, {2}},
    {"Connection",
     126,
     "Properties",
     {213, 231},
     IDOK,
     {{268, WC_TABCONTROLA, ""},
      {unnamed, "Static", "&Country/region:"},
      {260, "ComboBox", ""},
      {unnamed, "Static", "Enter the area code without the long distance prefix"},
      {unnamed, "Static", "A&rea code:"},
      {266, "Edit", ""},
      {unnamed, "Static", "&Phone number:"},
      {261, "Edit", ""},
      {unnamed, "Static", "Co&nnect using:"},
      {267, "ComboBox", ""},
      {263, "Button", "Co&nfigure..."},
      {264, "Button", "Use country/region code and area code"},
      {1, "Button", "OK"},
      {2, "Button", "Cancel"}},
     {{"&Country/region:", 260}, {"A&rea code:", 266}, {"&Phone number:", 261}, {"Co&nnect using:", 267}},
     {260, 266, 261, 267, 263, 264, 1, 2, 268}},
    {"SerialPort",
     127,
     "Properties",
     {212, 239},
     IDOK,
     {{268, WC_TABCONTROLA, ""},
      {unnamed, "Static", "&Bits per second:"},
      {202, "ComboBox", ""},
      {unnamed, "Static", "&Data bits:"},
      {204, "ComboBox", ""},
      {unnamed, "Static", "&Parity:"},
      {203, "ComboBox", ""},
      {unnamed, "Static", "&Stop bits:"},
      {205, "ComboBox", ""},
      {unnamed, "Static", "&Flow control:"},
      {273, "ComboBox", ""},
      {276, "Button", "&Restore Defaults"},
      {1, "Button", "OK"},
      {2, "Button", "Cancel"}},
     {{"&Bits per second:", 202},
      {"&Data bits:", 204},
      {"&Parity:", 203},
      {"&Stop bits:", 205},
      {"&Flow control:", 273}},
     {202, 204, 203, 205, 273, 276, 1, 2, 268}},
    {"Property",
     213,
     "Properties",
     {218, 140},
     IDOK,
     {{unnamed, "Button", "Connection"},
      {249, "Button", "Direct connection"},
      {250, "Button", "Dial phone number:"},
      {240, "Edit", ""},
      {unnamed, "Button", "Communications"},
      {253, "Static", "&Port:"},
      {201, "ComboBox", ""},
      {258, "Static", "Speed:"},
      {251, "ComboBox", ""},
      {254, "Static", "Parity:"},
      {203, "ComboBox", ""},
      {255, "Static", "Databits:"},
      {204, "ComboBox", ""},
      {256, "Static", "Stopbits:"},
      {205, "ComboBox", ""},
      {257, "Static", "&Modem:"},
      {202, "ComboBox", ""},
      {1, "Button", "OK"},
      {2, "Button", "Cancel"}},
     {{"&Port:", 201},
      {"Speed:", 251},
      {"Parity:", 203},
      {"Databits:", 204},
      {"Stopbits:", 205},
      {"&Modem:", 202}},
     {249, 240, 201, 251, 203, 204, 205, 202, 1, 2}},
    {"SendFile",
     208,
     "Send File",
     {186, 95},
     IDOK,
     {{unnamed, "Static", "&Filename:"},
      {100, "Edit", ""},
      {244, "Button", "..."},
      {unnamed, "Static", "&Protocol:"},
      {243, "ComboBox", ""},
      {1, "Button", "&Send"},
      {2, "Button", "Cancel"}},
     {{"&Filename:", 100}, {"&Protocol:", 243}},
     {100, 244, 243, 1, 2}},
    {"ReceiveFile",
     209,
     "Receive file",
     {186, 95},
     IDOK,
     {{unnamed, "Static", "&Destination folder:"},
      {245, "Edit", ""},
      {244, "Button", "..."},
      {unnamed, "Static", "&Protocol:"},
      {243, "ComboBox", ""},
      {1, "Button", "&Receive"},
      {2, "Button", "Cancel"}},
     {{"&Destination folder:", 245}, {"&Protocol:", 243}},
     {245, 244, 243, 1, 2}},
};

INT_PTR CALLBACK AnswerNothing(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

int IdOf(HWND hItem) {
    return static_cast<int>(GetWindowLongPtrA(hItem, GWLP_ID)) & unnamed;
}

std::string ClassOf(HWND hItem) {
    char name[64] = {};
    GetClassNameA(hItem, name, sizeof name);
    return name;
}

std::string Named(int id, const std::string& windowClass, const std::string& text) {
    return std::to_string(id) + " " + windowClass + " \"" + text + "\"";
}

std::vector<HWND> ItemsOf(HWND hDlg) {
    std::vector<HWND> items;
    for (HWND hItem = GetWindow(hDlg, GW_CHILD); hItem; hItem = GetWindow(hItem, GW_HWNDNEXT))
        items.push_back(hItem);
    return items;
}

LONG StyleOf(HWND hItem) {
    return GetWindowLongA(hItem, GWL_STYLE);
}

LONG ButtonKind(HWND hItem) {
    return ClassOf(hItem) == "Button" ? StyleOf(hItem) & BS_TYPEMASK : -1;
}

RECT BoxOf(HWND hDlg, HWND hItem) {
    RECT box = {};
    GetWindowRect(hItem, &box);
    MapWindowPoints(nullptr, hDlg, reinterpret_cast<POINT*>(&box), 2);
    return box;
}

// Those that others stand on.
bool IsFrame(HWND hItem) {
    return ButtonKind(hItem) == BS_GROUPBOX || ClassOf(hItem) == WC_TABCONTROLA;
}

bool Contains(const RECT& outer, const RECT& inner) {
    RECT common = {};
    IntersectRect(&common, &outer, &inner);
    return EqualRect(&common, &inner);
}

bool Overlap(const RECT& one, const RECT& other) {
    RECT common = {};
    return IntersectRect(&common, &one, &other);
}

class Context {
  public:
    explicit Context(HWND hDlg) : hDlg_(hDlg), dc_(GetDC(hDlg)) {
        before_ = SelectObject(dc_, reinterpret_cast<HGDIOBJ>(SendMessageA(hDlg, WM_GETFONT, 0, 0)));
    }
    ~Context() {
        SelectObject(dc_, before_);
        ReleaseDC(hDlg_, dc_);
    }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    SIZE Extent(const std::string& text) const {
        RECT box = {};
        DrawTextA(dc_, text.c_str(), -1, &box, DT_CALCRECT | DT_SINGLELINE);
        return {box.right, box.bottom};
    }

  private:
    HWND hDlg_;
    HDC dc_;
    HGDIOBJ before_;
};

class Templates : public testing::TestWithParam<Form> {
  protected:
    Templates() {
        const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_TAB_CLASSES};
        InitCommonControlsEx(&classes);
        form.reset(
            CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(GetParam().id), nullptr, AnswerNothing, 0));
    }

    Window form;
};

TEST_P(Templates, HaveTheirItems) {
    ASSERT_TRUE(form) << GetLastError();
    EXPECT_EQ(TextOf(form.get()), GetParam().title);
    Texts found;
    for (const HWND hItem : ItemsOf(form.get()))
        found.push_back(Named(IdOf(hItem), ClassOf(hItem), TextOf(hItem)));
    Texts expected;
    for (const Item& item : GetParam().items)
        expected.push_back(Named(item.id, item.windowClass, item.text));
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(found, expected);
}

TEST_P(Templates, HaveTheirSize) {
    RECT expected = {0, 0, GetParam().size.cx, GetParam().size.cy};
    MapDialogRect(form.get(), &expected);
    RECT client = {};
    GetClientRect(form.get(), &client);
    EXPECT_TRUE(EqualRect(&client, &expected)) << client.right << " by " << client.bottom;
}

// The modem's page takes the place of the port's.
bool ShareAPlace(int formId, int one, int other) {
    const auto isModems = [](int id) { return id == 257 || id == 202; };
    return formId == 213 && isModems(one) != isModems(other);
}

TEST_P(Templates, HoldTheirItemsApart) {
    RECT client = {};
    GetClientRect(form.get(), &client);
    const std::vector<HWND> items = ItemsOf(form.get());
    for (size_t i = 0; i < items.size(); ++i) {
        const RECT box = BoxOf(form.get(), items[i]);
        EXPECT_TRUE(Contains(client, box)) << IdOf(items[i]) << " sticks out";
        for (size_t j = i + 1; j < items.size(); ++j) {
            const RECT other = BoxOf(form.get(), items[j]);
            const std::string pair =
                std::to_string(IdOf(items[i])) + " and " + std::to_string(IdOf(items[j]));
            const bool onAFrame =
                (IsFrame(items[i]) || IsFrame(items[j])) && (Contains(box, other) || Contains(other, box));
            const bool apart = onAFrame || ShareAPlace(GetParam().id, IdOf(items[i]), IdOf(items[j])) ||
                               !Overlap(box, other);
            EXPECT_TRUE(apart) << pair;
        }
    }
}

// Room beside the text: of a mark in front of it, of a button's frame.
int RoomBeside(HWND hItem) {
    const LONG kind = ButtonKind(hItem);
    if (kind == BS_AUTOCHECKBOX || kind == BS_AUTORADIOBUTTON)
        return 18;
    return kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON || kind == BS_GROUPBOX ? 10 : 0;
}

TEST_P(Templates, CutNoText) {
    const Context context(form.get());
    for (const HWND hItem : ItemsOf(form.get())) {
        const std::string text = TextOf(hItem);
        const SIZE extent = context.Extent(text);
        const RECT box = BoxOf(form.get(), hItem);
        EXPECT_LE(extent.cx + RoomBeside(hItem), box.right - box.left) << text;
        EXPECT_LE(text.empty() ? 0 : extent.cy, box.bottom - box.top) << text;
    }
}

TEST_P(Templates, TabGoesFromItemToItem) {
    std::vector<int> found;
    HWND hItem = GetNextDlgTabItem(form.get(), nullptr, FALSE);
    for (size_t i = 0; i < GetParam().tabs.size() && hItem; ++i) {
        found.push_back(IdOf(hItem));
        hItem = GetNextDlgTabItem(form.get(), hItem, FALSE);
    }
    EXPECT_EQ(found, GetParam().tabs);
    EXPECT_TRUE(hItem && IdOf(hItem) == GetParam().tabs.front()) << "and around";
}

// A letter's way goes from its label to the item behind it, which stands at its right on the same line.
TEST_P(Templates, LabelsStandBesideTheirItems) {
    const std::vector<HWND> items = ItemsOf(form.get());
    for (const Label& label : GetParam().labels) {
        const auto found =
            std::find_if(items.begin(), items.end(), [&](HWND hItem) { return TextOf(hItem) == label.text; });
        ASSERT_TRUE(found != items.end() && found + 1 != items.end()) << label.text;
        EXPECT_EQ(IdOf(found[1]), label.item) << label.text;
        const RECT text = BoxOf(form.get(), found[0]);
        const RECT item = BoxOf(form.get(), found[1]);
        EXPECT_LE(text.right, item.left) << label.text;
        EXPECT_LE(std::abs((text.top + text.bottom) - (item.top + item.bottom)), 8) << label.text;
    }
}

TEST_P(Templates, LabelsAndItemsStandInColumns) {
    std::map<LONG, int> columns;
    for (const Label& label : GetParam().labels)
        ++columns[BoxOf(form.get(), GetDlgItem(form.get(), label.item)).left];
    for (const auto& [left, count] : columns)
        EXPECT_GE(count, 2) << left;
}

TEST_P(Templates, EnterMeansTheDefaultButton) {
    const LRESULT answer = SendMessageA(form.get(), DM_GETDEFID, 0, 0);
    EXPECT_EQ(HIWORD(answer), DC_HASDEFID);
    EXPECT_EQ(LOWORD(answer), GetParam().defaultButton);
}

TEST_P(Templates, AreNotShownBeforeTheyAreFilled) {
    EXPECT_FALSE(IsWindowVisible(form.get()));
}

INSTANTIATE_TEST_SUITE_P(Connection, Templates, testing::ValuesIn(forms),
                         [](const auto& info) { return std::string(info.param.name); });

Window MakeForm(int id) {
    return Window(CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(id), nullptr, AnswerNothing, 0));
}

TEST(PropertyTemplateGroups, RadioButtonsAreAGroupOfTheirOwn) {
    const Window form = MakeForm(213);
    const HWND direct = GetDlgItem(form.get(), 249);
    const HWND dial = GetDlgItem(form.get(), 250);
    EXPECT_EQ(GetNextDlgGroupItem(form.get(), direct, FALSE), dial);
    EXPECT_EQ(GetNextDlgGroupItem(form.get(), dial, FALSE), direct);
}

struct KindRow {
    int form;
    int item;
    LONG kind; // CBS_DROPDOWN lets people type
};

TEST(ListKinds, SpeedsAloneCanBeTyped) {
    for (const KindRow& row : {KindRow{127, 202, CBS_DROPDOWN},
                               {127, 203, CBS_DROPDOWNLIST},
                               {127, 204, CBS_DROPDOWNLIST},
                               {127, 205, CBS_DROPDOWNLIST},
                               {127, 273, CBS_DROPDOWNLIST},
                               {126, 260, CBS_DROPDOWNLIST},
                               {126, 267, CBS_DROPDOWNLIST},
                               {213, 201, CBS_DROPDOWNLIST},
                               {213, 202, CBS_DROPDOWNLIST},
                               {213, 203, CBS_DROPDOWNLIST},
                               {213, 204, CBS_DROPDOWNLIST},
                               {213, 205, CBS_DROPDOWNLIST},
                               {208, 243, CBS_DROPDOWNLIST},
                               {209, 243, CBS_DROPDOWNLIST},
                               {213, 251, CBS_DROPDOWN}}) {
        const Window form = MakeForm(row.form);
        const LONG style = StyleOf(GetDlgItem(form.get(), row.item));
        EXPECT_EQ(style & 3, row.kind) << row.form << " " << row.item;
        EXPECT_FALSE(style & CBS_SORT) << row.form << " " << row.item;
    }
}

TEST(ModemsPage, IsInTheSamePlace) {
    const Window form = MakeForm(213);
    const auto corner = [&](int item) {
        const RECT box = BoxOf(form.get(), GetDlgItem(form.get(), item));
        return std::pair(box.left, box.top);
    };
    EXPECT_EQ(corner(257), corner(253));
    EXPECT_EQ(corner(202), corner(201));
}

} // namespace
