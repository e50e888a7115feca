// Where the module looks for the list of modems.
#include "support/host.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

std::string FolderOf(HMODULE module) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(module, path, MAX_PATH);
    const std::string name(path);
    return name.substr(0, name.rfind('\\') + 1);
}

std::string Asked(UINT(WINAPI* getFolder)(char*, UINT)) {
    char path[MAX_PATH] = {};
    getFolder(path, MAX_PATH);
    return std::string(path) + "\\";
}

// A copy of the module in a folder of its own, and no list anywhere.
class ModuleElsewhere : public testing::Test {
  protected:
    explicit ModuleElsewhere(size_t pathLength = 0) {
        char temporary[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, temporary);
        folder = std::string(temporary) + "tarn-modules";
        const size_t fileLength = strlen("\\LantryElsewhere.ocx");
        if (pathLength)
            folder.resize(pathLength - fileLength, 'x');
        folder += "\\";
        CreateDirectoryA(folder.c_str(), nullptr);
        CopyFileA((FolderOf(GetModuleHandleA("Lantry.ocx")) + "Lantry.ocx").c_str(),
                  (folder + "LantryElsewhere.ocx").c_str(), FALSE);
        module = LoadLibraryA((folder + "LantryElsewhere.ocx").c_str());
        places = {folder, FolderOf(nullptr), Asked(GetWindowsDirectoryA), Asked(GetSystemDirectoryA)};
        for (const std::string& place : places)
            MoveFileExA(ListIn(place).c_str(), Aside(place).c_str(), MOVEFILE_REPLACE_EXISTING);
    }
    ~ModuleElsewhere() override {
        FreeLibrary(module);
        for (const std::string& place : places) {
            DeleteFileA(ListIn(place).c_str());
            MoveFileA(Aside(place).c_str(), ListIn(place).c_str());
        }
    }

    static std::string ListIn(const std::string& place) { return place + "MODEM.LST"; }
    static std::string Aside(const std::string& place) { return place + "MODEM.aside"; }

    static void WriteList(const std::string& place) {
        std::FILE* file = std::fopen(ListIn(place).c_str(), "wb");
        ASSERT_NE(file, nullptr) << place;
        std::fprintf(file, "%s\tATZ\r\n", place.c_str());
        std::fclose(file);
    }

    template <class Function>
    Function* Get(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }

    // The names that the module puts in a list box.
    std::vector<std::string> Names(int expectedResult) {
        const HWND object = Get<decltype(CreateCommObject)>("CreateCommObject")(nullptr);
        const HWND box =
            CreateWindowA("LISTBOX", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(Get<decltype(FillListWithModemNames)>("FillListWithModemNames")(object, box),
                  expectedResult);
        std::vector<std::string> names;
        const LRESULT count = SendMessageA(box, LB_GETCOUNT, 0, 0);
        for (LRESULT i = 0; i < count; ++i) {
            char name[MAX_PATH] = {};
            SendMessageA(box, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(name));
            names.emplace_back(name);
        }
        DestroyWindow(box);
        Get<decltype(DestroyCommObject)>("DestroyCommObject")(object);
        return names;
    }

    std::string folder;
    HMODULE module;
    std::vector<std::string> places;
};

// Paths of 255 characters are the longest that count.
class ModuleFarAway : public ModuleElsewhere {
  protected:
    ModuleFarAway() : ModuleElsewhere(256) {}
};

class ModuleJustNearEnough : public ModuleElsewhere {
  protected:
    ModuleJustNearEnough() : ModuleElsewhere(255) {}
};

using Texts = std::vector<std::string>;

TEST_F(ModuleElsewhere, TakesTheListFromTheFirstPlaceThatHasOne) {
    for (const std::string& place : places)
        WriteList(place);
    for (const std::string& place : places) {
        EXPECT_EQ(Names(1), (Texts{"Hayes Compatible", place}));
        DeleteFileA(ListIn(place).c_str());
    }
    EXPECT_EQ(Names(0), Texts{"Hayes Compatible"}) << "no list anywhere";
}

TEST_F(ModuleFarAway, IsNoPlaceToLook) {
    WriteList(places[0]);
    EXPECT_EQ(Names(0), Texts{"Hayes Compatible"});
}

TEST_F(ModuleJustNearEnough, IsAPlaceToLook) {
    WriteList(places[0]);
    const std::vector<std::string> names = Names(1);
    ASSERT_EQ(names.size(), 3u) << "the name is longer than a line";
    EXPECT_EQ(names[1], places[0].substr(0, 199));
}

TEST_F(ModuleElsewhere, ListThatCannotBeReadIsPassedOver) {
    WriteList(places[1]);
    CreateDirectoryA(ListIn(places[0]).c_str(), nullptr);
    EXPECT_EQ(Names(1), (Texts{"Hayes Compatible", places[1]}));
    RemoveDirectoryA(ListIn(places[0]).c_str());
}

TEST_F(ModuleElsewhere, OthersMayReadTheListMeanwhile) {
    WriteList(places[0]);
    const HANDLE reader = CreateFileA(ListIn(places[0]).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(Names(1), (Texts{"Hayes Compatible", places[0]}));
    CloseHandle(reader);
}

TEST(ModemListOfThePackage, ShowsItsModems) {
    const HWND object = CreateCommObject(nullptr);
    const HWND box = CreateWindowA("COMBOBOX", "", WS_POPUP | CBS_DROPDOWNLIST, 0, 0, 9, 9, nullptr, nullptr,
                                   nullptr, nullptr);
    EXPECT_EQ(FillComboWithModemNames(object, box), 1);
    EXPECT_GT(SendMessageA(box, CB_GETCOUNT, 0, 0), 30);
    DestroyWindow(box);
    DestroyCommObject(object);
}

} // namespace
