// The list of modems in real list and combo boxes.
#include "support/host.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

// MODEM.LST beside this program, which is the module too.
class ListFile {
  public:
    explicit ListFile(const std::string& text) {
        std::FILE* file = std::fopen(Path().c_str(), "wb");
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
    }
    ~ListFile() { DeleteFileA(Path().c_str()); }
    ListFile(const ListFile&) = delete;
    ListFile& operator=(const ListFile&) = delete;

    static std::string Path() {
        char path[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, path, MAX_PATH);
        const std::string name(path);
        return name.substr(0, name.rfind('\\') + 1) + "MODEM.LST";
    }
};

struct Kind {
    const char* name;
    const char* windowClass;
    DWORD style;
    DWORD sorted;
    UINT count, text, data, selected, add, select;
    int(TARNAPI* fill)(HWND, HWND);
};

const Kind kinds[] = {
    {"ListBox", "LISTBOX", 0, LBS_SORT, LB_GETCOUNT, LB_GETTEXT, LB_GETITEMDATA, LB_GETCURSEL, LB_ADDSTRING,
     LB_SELECTSTRING, FillListWithModemNames},
    {"ComboBox", "COMBOBOX", CBS_DROPDOWNLIST, CBS_SORT, CB_GETCOUNT, CB_GETLBTEXT, CB_GETITEMDATA,
     CB_GETCURSEL, CB_ADDSTRING, CB_SELECTSTRING, FillComboWithModemNames},
};

constexpr LRESULT noItem = -1;

class ModemNames : public testing::TestWithParam<Kind> {
  protected:
    ModemNames() { MakeControl(0); }
    ~ModemNames() override { DestroyWindow(control); }

    void MakeControl(DWORD moreStyle) {
        DestroyWindow(control);
        control = CreateWindowA(GetParam().windowClass, "", WS_POPUP | GetParam().style | moreStyle, 0, 0,
                                200, 200, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(control, nullptr);
    }
    int Fill() { return GetParam().fill(object, control); }

    LRESULT Ask(UINT message, WPARAM item = 0) { return SendMessageA(control, message, item, 0); }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (LRESULT i = 0; i < Ask(GetParam().count); ++i) {
            char name[256] = {};
            SendMessageA(control, GetParam().text, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(name));
            names.emplace_back(name);
        }
        return names;
    }
    LRESULT Data(WPARAM item) { return Ask(GetParam().data, item); }
    LRESULT Selected() { return Ask(GetParam().selected); }

    host::CommObject object;
    HWND control = nullptr;
};

using Texts = std::vector<std::string>;

TEST_P(ModemNames, WithoutAFileThereIsTheDefault) {
    SetModemOptions(object, "Hayes Compatible\tATZ");
    EXPECT_EQ(Fill(), 0);
    EXPECT_EQ(Names(), Texts{"Hayes Compatible"});
    EXPECT_EQ(Selected(), noItem) << "selected only with a list";
}

TEST_P(ModemNames, ListFollowsTheDefault) {
    const ListFile file("Alpha\tATZ\tATDT\r\nNo tab here\r\nGamma\tATZ\r\n\r\nBehind the end\tATZ\r\n");
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Names(), (Texts{"Hayes Compatible", "Alpha", "No tab here", "Gamma"}));
    EXPECT_EQ(Data(0), 0) << "left alone";
    for (WPARAM i = 1; i <= 3; ++i)
        EXPECT_EQ(Data(i), static_cast<LRESULT>(i));
}

TEST_P(ModemNames, SortedControlKeepsThePlacesOfTheFile) {
    MakeControl(GetParam().sorted);
    const ListFile file("Zeta\tATZ\r\nAlpha\tATZ\r\nMu\tATZ\r\n");
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Names(), (Texts{"Alpha", "Hayes Compatible", "Mu", "Zeta"}));
    EXPECT_EQ(Data(0), 2);
    EXPECT_EQ(Data(2), 3);
    EXPECT_EQ(Data(3), 1);
}

TEST_P(ModemNames, FileWithAnEmptyFirstLine) {
    const ListFile file("\r\nAlpha\tATZ\r\n");
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Names(), Texts{"Hayes Compatible"});
}

TEST_P(ModemNames, TitleSelectsByItsBeginning) {
    const ListFile file("Alpha\tATZ\r\nBeta 2\tATZ\r\nBeta 3\tATZ\r\n");
    SetModemOptions(object, "beta\tATZ");
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Selected(), 2) << "the first that begins so, case aside";
}

TEST_P(ModemNames, UnknownTitleSelectsNothing) {
    const ListFile file("Alpha\tATZ\r\n");
    SetModemOptions(object, "Alphabet\tATZ");
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Selected(), noItem);
}

TEST_P(ModemNames, NamesAreAddedToWhatIsThere) {
    const ListFile file("Alpha\tATZ\r\n");
    Fill();
    EXPECT_EQ(Fill(), 1);
    EXPECT_EQ(Names(), (Texts{"Hayes Compatible", "Alpha", "Hayes Compatible", "Alpha"}));
    EXPECT_EQ(Data(3), 1);
}

TEST_P(ModemNames, FileOfManyChunksIsReadWhole) {
    std::string text;
    for (int i = 0; i < 500; ++i)
        text += "Modem " + std::to_string(i) + "\tATZ\tATDT\tATDP\tATS0=1^M\r\n";
    const ListFile file(text);
    EXPECT_EQ(Fill(), 1);
    const auto names = Names();
    ASSERT_EQ(names.size(), 501u);
    for (size_t i = 0; i < 500; ++i)
        ASSERT_EQ(names[i + 1], "Modem " + std::to_string(i));
}

TEST_P(ModemNames, BadHandlesGiveNothing) {
    const ListFile file("Alpha\tATZ\r\n");
    EXPECT_EQ(GetParam().fill(nullptr, control), 0);
    EXPECT_EQ(GetParam().fill(object, nullptr), 0);
    EXPECT_EQ(GetParam().fill(control, control), 0);
    EXPECT_EQ(Names(), Texts{});
}

// A control of the host's that destroys the object at a message of its choice.
LRESULT CALLBACK DestroyAtMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == reinterpret_cast<UINT_PTR>(GetPropA(window, "message")))
        DestroyWindow(static_cast<HWND>(GetPropA(window, "object")));
    const auto procedure = reinterpret_cast<WNDPROC>(GetPropA(window, "procedure"));
    return CallWindowProcA(procedure ? procedure : DefWindowProcA, window, message, wParam, lParam);
}

TEST_P(ModemNames, HostMayDestroyTheObjectMeanwhile) {
    const ListFile file("Alpha\tATZ\r\n");
    for (const UINT message : {GetParam().add, GetParam().select}) {
        MakeControl(0);
        const HWND other = CreateCommObject(nullptr);
        SetModemOptions(other, "Alpha");
        SetPropA(control, "object", other);
        SetPropA(control, "message", reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(message)));
        SetPropA(control, "procedure", reinterpret_cast<HANDLE>(GetWindowLongPtrA(control, GWLP_WNDPROC)));
        SetWindowLongPtrA(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DestroyAtMessage));
        EXPECT_EQ(GetParam().fill(other, control), message == GetParam().select);
        EXPECT_FALSE(IsWindow(other));
        EXPECT_EQ(Selected(), message == GetParam().select ? 1 : noItem);
        for (const char* property : {"object", "message", "procedure"})
            RemovePropA(control, property);
    }
}

INSTANTIATE_TEST_SUITE_P(Controls, ModemNames, testing::ValuesIn(kinds),
                         [](const auto& info) { return std::string(info.param.name); });

class ModemOptionsDoors : public testing::Test {
  protected:
    host::CommObject object;
};

TEST_F(ModemOptionsDoors, FreshObjectGivesOneTab) {
    char buffer[TARN_MODEM_OPTIONS_SIZE] = {'#', '#'};
    EXPECT_EQ(GetModemOptions(object, buffer), 1);
    EXPECT_EQ(buffer[0], '\t');
    EXPECT_EQ(buffer[1], '#');
}

TEST_F(ModemOptionsDoors, TextGoesInAndOut) {
    SetModemOptions(object, "Alpha\tATZ^M\n");
    char buffer[TARN_MODEM_OPTIONS_SIZE] = {};
    EXPECT_EQ(GetModemOptions(object, buffer), 12);
    EXPECT_STREQ(buffer, "Alpha\tATZ^M\t");
}

TEST_F(ModemOptionsDoors, NothingAndNobody) {
    SetModemOptions(object, "Alpha");
    SetModemOptions(object, nullptr);
    SetModemOptions(nullptr, "Beta");
    char buffer[TARN_MODEM_OPTIONS_SIZE] = {'#'};
    EXPECT_EQ(GetModemOptions(nullptr, buffer), 0);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(GetModemOptions(object, nullptr), 0);
    EXPECT_EQ(GetModemOptions(object, buffer), 6);
}

} // namespace
