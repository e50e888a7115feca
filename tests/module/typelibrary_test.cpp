// The type library in the finished module, both ways: it has all that the table has, and nothing else.
#include "typelibrary_members.h"
#include "typelibrary_reader.h"

#include <gtest/gtest.h>

#include <iostream>
#include <set>
#include <sstream>

namespace {

using Lines = std::multiset<std::string>;
using typelibrary::Function;
using typelibrary::TypeInfo;

// Identifiers that programs keep.
const std::map<std::string, std::string> identifiers = {
    {"dual ITarnComm", "0A231D01-CAFF-4D3B-B099-A8DFBF72D60C"},
    {"dispinterface _ITarnCommEvents", "2749737F-3FBF-42D8-AA89-3292D60C8FD7"},
    {"dual IScriptExtension", "018F8E81-17E3-4910-9492-FD152D742801"},
    {"dispinterface _IScriptExtensionEvents", "1FD3A200-C917-4B34-8A42-996A9DC00287"},
    {"dual ICommPort", "8D9D5D97-8EBA-4652-937F-4E209B5B876F"},
    {"dual ITapiLocation", "DD236C24-7823-4969-9F37-C5D6A9EFC226"},
    {"coclass TarnComm", "0EA7156F-80D9-46C4-B722-2C416B03DEF1"},
    {"coclass ScriptExtension", "203002EF-A316-43BD-9AFE-DBADE207F471"},
    {"coclass PropCommunications", "D5FA1FDE-F23C-472D-817D-6F291CEFB060"},
    {"coclass PropTerminal", "30437525-B78A-44F7-BBB5-A24F393D4646"},
    {"coclass PropWireTap", "125EBE34-894D-4CE4-B0F5-5797BB08111F"},
    {"coclass PropAbout", "7628F7C3-3F34-41C6-A5D8-4B2E10B180F3"},
    {"enum AutoSize", "3D7BFDBF-0C24-4501-8FCF-DAB901891695"},
    {"enum BackSpace", "15AB7F21-B97A-489C-A283-92C84241FB30"},
    {"enum CaptureMode", "CEA37E92-5A0F-4FAD-8E0D-6846DFB3CD5F"},
    {"enum ColorFilter", "12420718-386C-4D8D-B535-8D9445F4F4BA"},
    {"enum CommandState", "1179B3EB-568F-490C-AE24-4B495A4020D6"},
    {"enum CommBorderStyle", "384CC8A3-B40A-417E-98DD-5C8072C3396C"},
    {"enum CommCommand", "3141B1E8-65E6-4DEE-9F7E-032D9249507D"},
    {"enum CommError", "C8F72139-7A06-42C1-97A0-E65D1FD3169A"},
    {"enum CommEvent", "F8AD24B6-5FE8-4EF6-BC28-AAFDC416F57C"},
    {"enum CommInputMode", "FCE05917-1EDA-4F6C-BB1E-9B1831013B71"},
    {"enum DialMode", "0D5ADB57-A543-4546-80F0-E347FAB0BE64"},
    {"enum Emulation", "B2F783CA-2902-4AB2-92DD-B9EB2233D227"},
    {"enum EndOfLineMode", "34EE6E27-DE22-4434-9B86-653492B5FF61"},
    {"enum Handshaking", "27432C95-EA1E-4614-A30B-403795BCBC06"},
    {"enum PortType", "305CD8F3-DBA7-4205-8295-BD524BCC9993"},
    {"enum ResumeMethod", "201E30CF-E03B-4D2E-9B4D-76F45172FCE1"},
    {"enum StatusDialog", "7DB709AD-CDE2-4E1D-9A68-6823D2255F63"},
    {"enum TerminalColor", "0BDC77E0-F745-46D9-ADAE-CE3C5FDC7B2B"},
    {"enum XferProtocol", "B3AEB713-E9A9-4342-AFB7-A713161D62B7"},
    {"enum XferStatus", "F37FEE92-763E-49F5-B351-E5C796EB1C3A"},
};
constexpr char libraryIdentifier[] = "{F570BC1D-A37D-4F71-9B29-BAF9FEB286AE}";

class TypeLibrary : public testing::Test {
  protected:
    std::vector<Function> Virtual(const char* dual) const {
        return typelibrary::Functions(typelibrary::VirtualFace(library.Find(dual).Get()).Get());
    }

    const typelibrary::Library library{L"Lantry.ocx"};
};

std::string Joined(const Lines& lines, const Lines& without) {
    std::string text;
    for (const std::string& line : lines) {
        if (!without.count(line))
            text += "\n    " + line;
    }
    return text;
}

void ExpectSame(const Lines& expected, const Lines& found, const char* what) {
    EXPECT_EQ(Joined(expected, found), "") << what << ": missing";
    EXPECT_EQ(Joined(found, expected), "") << what << ": not in the table";
    EXPECT_EQ(found.size(), expected.size()) << what;
    std::cout << what << ": " << found.size() << "\n";
}

std::string Line(int number, const std::string& kind, const char* name, const char* arguments,
                 const char* result, const std::string& marks) {
    return std::to_string(number) + " " + kind + " " + name + "(" + arguments + ") " + result +
           (marks.empty() ? "" : " " + marks);
}

void Add(Lines& lines, const std::vector<members::Property>& properties) {
    for (const members::Property& property : properties) {
        std::istringstream access(property.access);
        for (std::string kind; access >> kind;)
            lines.insert(
                Line(property.number, kind, property.name, property.index, property.type, property.marks));
    }
}

void Add(Lines& lines, const std::vector<members::Method>& methods) {
    for (const members::Method& method : methods)
        lines.insert(Line(method.number, "call", method.name, method.arguments, method.result, ""));
}

template <class... Tables>
Lines Expected(const Tables&... tables) {
    Lines lines;
    (Add(lines, tables), ...);
    return lines;
}

Lines Found(const std::vector<Function>& functions) {
    Lines lines;
    for (const Function& function : functions)
        lines.insert(function.line);
    return lines;
}

// What a row says about help; where it says nothing, there is some.
template <class Rows>
int ExpectHelp(const Rows& rows, const std::vector<Function>& functions) {
    int compared = 0;
    for (const auto& row : rows) {
        for (const Function& function : functions) {
            if (function.number != row.number)
                continue;
            EXPECT_NE(function.help, "") << row.name;
            if (*row.help) {
                EXPECT_EQ(function.help, row.help) << row.name;
                ++compared;
            }
        }
    }
    return compared;
}

TEST_F(TypeLibrary, HasItsNameVersionAndHelp) {
    BSTR name = nullptr, help = nullptr;
    ASSERT_EQ(library->GetDocumentation(-1, &name, &help, nullptr, nullptr), S_OK);
    EXPECT_STREQ(name, L"TarnLink");
    EXPECT_STREQ(help, L"Tarn Link Objects 1.0 Type Library");
    SysFreeString(name);
    SysFreeString(help);

    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    wchar_t identifier[40] = {};
    StringFromGUID2(attributes->guid, identifier, 40);
    EXPECT_EQ(std::string(identifier, identifier + 38), libraryIdentifier);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    EXPECT_EQ(attributes->syskind, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
    library->ReleaseTLibAttr(attributes);
}

TEST_F(TypeLibrary, HasTheTypesWithTheirIdentifiers) {
    Lines expected, found;
    for (const auto& [line, identifier] : identifiers)
        expected.insert(line + " " + identifier);
    for (const typelibrary::Type& type : library.Types()) {
        found.insert(type.line + " " + type.identifier);
        EXPECT_NE(type.help, "") << type.line;
    }
    ExpectSame(expected, found, "types");
}

TEST_F(TypeLibrary, HasTheMembersOfTheControl) {
    const auto functions = Virtual("ITarnComm");
    ExpectSame(Expected(members::control, members::controlMethods), Found(functions),
               "functions of the control");
    const int compared =
        ExpectHelp(members::control, functions) + ExpectHelp(members::controlMethods, functions);
    EXPECT_EQ(compared, static_cast<int>(members::controlMethods.size())) << "help texts of the methods";
    std::cout << "properties: " << members::control.size() << ", methods: " << members::controlMethods.size()
              << "\n";
}

TEST_F(TypeLibrary, HasTheEvents) {
    const auto functions = typelibrary::Functions(library.Find("_ITarnCommEvents").Get());
    ExpectSame(Expected(members::controlEvents), Found(functions), "events");
    EXPECT_EQ(ExpectHelp(members::controlEvents, functions), 5) << "help texts of events";
    EXPECT_TRUE(typelibrary::Functions(library.Find("_IScriptExtensionEvents").Get()).empty());
}

TEST_F(TypeLibrary, HasTheMembersOfTheScriptExtension) {
    const auto functions = Virtual("IScriptExtension");
    ExpectSame(Expected(members::script, members::scriptMethods), Found(functions),
               "functions of the script extension");
    EXPECT_EQ(ExpectHelp(members::script, functions) + ExpectHelp(members::scriptMethods, functions), 7)
        << "all but WaitFor, and one property twice";
}

TEST_F(TypeLibrary, HasTheCollections) {
    for (const char* name : {"ITapiLocation", "ICommPort"}) {
        const auto functions = Virtual(name);
        ExpectSame(Expected(members::collection), Found(functions), name);
        ExpectHelp(members::collection, functions);
    }
}

TEST_F(TypeLibrary, HasTheNamedValues) {
    Lines expected, found;
    for (const members::Enumeration& enumeration : members::enumerations) {
        for (const members::NamedValue& value : enumeration.values)
            expected.insert(enumeration.name + (" " + std::to_string(value.value)) + " " + value.name);
    }
    for (const typelibrary::Type& type : library.Types()) {
        if (!type.line.starts_with("enum "))
            continue;
        for (const std::string& value : typelibrary::Values(type.info.Get()))
            found.insert(type.line.substr(5) + " " + value);
    }
    ExpectSame(expected, found, "named values");
    EXPECT_EQ(members::enumerations.size(), 20u);
}

TEST_F(TypeLibrary, HasTheObjects) {
    using Rows = std::vector<std::string>;
    const std::map<std::string, Rows> objects = {
        {"TarnComm", {"default ITarnComm", "default source _ITarnCommEvents"}},
        {"ScriptExtension", {"default IScriptExtension", "default source _IScriptExtensionEvents"}},
        {"PropCommunications", {}},
        {"PropTerminal", {}},
        {"PropWireTap", {}},
        {"PropAbout", {}},
    };
    for (const auto& [name, faces] : objects) {
        const TypeInfo object = library.Find(name.c_str());
        EXPECT_EQ(typelibrary::Faces(object.Get()), faces) << name;
        const WORD flags = typelibrary::Flags(object.Get());
        EXPECT_TRUE(flags & TYPEFLAG_FCANCREATE) << name;
        EXPECT_EQ((flags & TYPEFLAG_FCONTROL) != 0, name == "TarnComm") << name;
    }
    BSTR help = nullptr;
    library.Find("ScriptExtension")->GetDocumentation(MEMBERID_NIL, nullptr, &help, nullptr, nullptr);
    EXPECT_STREQ(help, L"Tarn Comm Script Extension Class");
    SysFreeString(help);
}

constexpr const char* dualInterfaces[] = {"ITarnComm", "IScriptExtension", "ICommPort", "ITapiLocation"};
constexpr int slotsOfIDispatch = 7;

TEST_F(TypeLibrary, DualInterfacesAreForAutomation) {
    for (const char* name : dualInterfaces) {
        const TypeInfo dual = library.Find(name);
        EXPECT_TRUE(typelibrary::Flags(dual.Get()) & TYPEFLAG_FDISPATCHABLE) << name;
        EXPECT_TRUE(typelibrary::Flags(dual.Get()) & TYPEFLAG_FDUAL) << name;
        EXPECT_TRUE(typelibrary::Flags(typelibrary::VirtualFace(dual.Get()).Get()) & TYPEFLAG_FOLEAUTOMATION)
            << name;
    }
}

TEST_F(TypeLibrary, VirtualFunctionsStandOneBehindTheOther) {
    for (const char* name : dualInterfaces) {
        int slot = slotsOfIDispatch;
        for (const Function& function : Virtual(name))
            EXPECT_EQ(function.slot, slot++) << name << " " << function.line;
    }
}

// Stock properties, with their negative numbers, come behind the control's own.
TEST_F(TypeLibrary, ControlsMembersStandInTheOrderOfTheirNumbers) {
    const auto place = [](const Function& function) {
        return std::pair(function.number < 0, function.number);
    };
    const auto functions = Virtual("ITarnComm");
    for (size_t i = 1; i < functions.size(); ++i)
        EXPECT_LE(place(functions[i - 1]), place(functions[i])) << functions[i].line;
}

TEST_F(TypeLibrary, DispatchAndVirtualFunctionsAgree) {
    for (const char* name : dualInterfaces) {
        const TypeInfo dual = library.Find(name);
        EXPECT_EQ(Found(typelibrary::Functions(dual.Get())), Found(Virtual(name))) << name;
        for (const Function& function : Virtual(name)) {
            std::wstring wide(function.name.begin(), function.name.end());
            LPOLESTR text = wide.data();
            MEMBERID number = 0;
            ASSERT_EQ(dual->GetIDsOfNames(&text, 1, &number), S_OK) << function.line;
            EXPECT_EQ(number, function.number) << function.line;
        }
    }
}

} // namespace
