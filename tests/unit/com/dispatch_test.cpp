// IDispatch by the type library, with every kind of argument; error records; class information.
#include "toycontrol.h"

#include "com/typeinfo.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

class ComDispatch : public testing::Test {
  public:
    ComDispatch() { EXPECT_EQ(NewObject(toy), S_OK); }

    // Arguments in declared order.
    HRESULT Call(DISPID id, WORD flags, std::vector<_variant_t> arguments, _variant_t& result) {
        std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
        DISPID put = DISPID_PROPERTYPUT;
        const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        DISPPARAMS parameters = {reversed.data(), puts ? &put : nullptr, static_cast<UINT>(reversed.size()),
                                 puts ? 1u : 0u};
        exception = {};
        const HRESULT answer = Dispatch()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                                  puts ? nullptr : &result, &exception, &badArgument);
        return answer;
    }
    HRESULT Put(DISPID id, std::vector<_variant_t> arguments, WORD flags = DISPATCH_PROPERTYPUT) {
        _variant_t none;
        return Call(id, flags, std::move(arguments), none);
    }
    _variant_t Get(DISPID id, std::vector<_variant_t> arguments = {}) {
        _variant_t result;
        EXPECT_EQ(Call(id, DISPATCH_PROPERTYGET, std::move(arguments), result), S_OK);
        return result;
    }
    IDispatch* Dispatch() { return static_cast<IToy*>(toy.Get()); }

    ComPtr<ToyControl> toy;
    EXCEPINFO exception = {};
    UINT badArgument = 0;
};

TEST_F(ComDispatch, NamesAreFoundInAnyCase) {
    const std::pair<const wchar_t*, DISPID> rows[] = {
        {L"Text", 1}, {L"text", 1}, {L"Flag", 2}, {L"Item", 5}, {L"Helper", 6}, {L"Bump", 7}, {L"Add", 10},
    };
    for (const auto& [name, id] : rows) {
        auto* asked = const_cast<LPOLESTR>(name);
        DISPID found = DISPID_UNKNOWN;
        EXPECT_EQ(Dispatch()->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &found), S_OK) << name;
        EXPECT_EQ(found, id);
    }
    auto* unknown = const_cast<LPOLESTR>(L"Nothing");
    DISPID found = 0;
    EXPECT_EQ(Dispatch()->GetIDsOfNames(IID_NULL, &unknown, 1, LOCALE_USER_DEFAULT, &found),
              DISP_E_UNKNOWNNAME);
    EXPECT_EQ(found, DISPID_UNKNOWN);
}

TEST_F(ComDispatch, StringGoesThereAndBackWithItsZeros) {
    const std::wstring text(L"a\0b", 3);
    _variant_t value;
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = SysAllocStringLen(text.data(), 3);
    EXPECT_EQ(Put(1, {value}), S_OK);
    const _variant_t back = Get(1);
    ASSERT_EQ(V_VT(&back), VT_BSTR);
    EXPECT_EQ(std::wstring(V_BSTR(&back), SysStringLen(V_BSTR(&back))), text);
}

TEST_F(ComDispatch, ArgumentsAreConvertedToTheMembersType) {
    EXPECT_EQ(Put(1, {_variant_t(42L)}), S_OK);
    EXPECT_STREQ(V_BSTR(&static_cast<const VARIANT&>(Get(1))), L"42");
    EXPECT_EQ(Put(2, {_variant_t(1L)}), S_OK);
    EXPECT_EQ(V_BOOL(&static_cast<const VARIANT&>(Get(2))), VARIANT_TRUE);
    EXPECT_EQ(Put(2, {_variant_t(L"no number")}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(badArgument, 0u);
}

TEST_F(ComDispatch, BooleanIsAVariantBool) {
    EXPECT_EQ(Put(2, {_variant_t(true)}), S_OK);
    const _variant_t back = Get(2);
    EXPECT_EQ(V_VT(&back), VT_BOOL);
    EXPECT_EQ(V_BOOL(&back), VARIANT_TRUE);
}

TEST_F(ComDispatch, VariantKeepsItsType) {
    for (const _variant_t& value :
         {_variant_t(2.5), _variant_t(L"text"), _variant_t(static_cast<short>(7))}) {
        EXPECT_EQ(Put(3, {value}), S_OK);
        EXPECT_TRUE(Get(3) == value);
    }
}

TEST_F(ComDispatch, EnumerationTakesAndGivesNumbers) {
    EXPECT_EQ(Put(4, {_variant_t(static_cast<short>(ToyColor_Green))}), S_OK);
    const _variant_t back = Get(4);
    EXPECT_EQ(V_VT(&back), VT_I4);
    EXPECT_EQ(V_I4(&back), ToyColor_Green);
}

TEST_F(ComDispatch, IndexedPropertyHasOneValueForEachIndex) {
    EXPECT_EQ(Put(5, {_variant_t(3L), _variant_t(L"three")}), S_OK);
    EXPECT_EQ(Put(5, {_variant_t(4L), _variant_t(L"four")}), S_OK);
    EXPECT_STREQ(V_BSTR(&static_cast<const VARIANT&>(Get(5, {_variant_t(3L)}))), L"three");
    EXPECT_STREQ(V_BSTR(&static_cast<const VARIANT&>(Get(5, {_variant_t(4L)}))), L"four");
}

TEST_F(ComDispatch, ObjectIsPutByReference) {
    ComPtr<ToyControl> other;
    ASSERT_EQ(NewObject(other), S_OK);
    IDispatch* helper = static_cast<IToy*>(other.Get());
    EXPECT_EQ(Put(6, {_variant_t(helper)}, DISPATCH_PROPERTYPUTREF), S_OK);
    const _variant_t back = Get(6);
    ASSERT_EQ(V_VT(&back), VT_DISPATCH);
    EXPECT_EQ(V_DISPATCH(&back), helper);
}

TEST_F(ComDispatch, ReferencesToShortAndFloatAreWrittenThrough) {
    short key = 65;
    float x = 1.5f;
    VARIANT arguments[2] = {};
    V_VT(&arguments[1]) = VT_BYREF | VT_I2;
    V_I2REF(&arguments[1]) = &key;
    V_VT(&arguments[0]) = VT_BYREF | VT_R4;
    V_R4REF(&arguments[0]) = &x;
    DISPPARAMS parameters = {arguments, nullptr, 2, 0};
    EXPECT_EQ(Dispatch()->Invoke(7, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(key, 66);
    EXPECT_EQ(x, 3.0f);
}

TEST_F(ComDispatch, OptionalVariantThatIsMissingSaysSo) {
    _variant_t kind;
    EXPECT_EQ(Call(8, DISPATCH_METHOD, {}, kind), S_OK);
    EXPECT_EQ(V_I4(&kind), VT_ERROR);
    EXPECT_EQ(Call(8, DISPATCH_METHOD, {_variant_t(1.5)}, kind), S_OK);
    EXPECT_EQ(V_I4(&kind), VT_R8);
}

TEST_F(ComDispatch, NamedArgumentsFindTheirPlaces) {
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"Add"), const_cast<LPOLESTR>(L"right"),
                        const_cast<LPOLESTR>(L"left")};
    DISPID ids[3] = {};
    ASSERT_EQ(Dispatch()->GetIDsOfNames(IID_NULL, names, 3, LOCALE_USER_DEFAULT, ids), S_OK);
    EXPECT_EQ(ids[1], 1);
    EXPECT_EQ(ids[2], 0);
}

TEST_F(ComDispatch, MethodReturnsItsValue) {
    _variant_t sum;
    EXPECT_EQ(Call(10, DISPATCH_METHOD, {_variant_t(40L), _variant_t(2L)}, sum), S_OK);
    EXPECT_EQ(V_I4(&sum), 42);
    EXPECT_EQ(Call(10, DISPATCH_METHOD, {_variant_t(40L)}, sum), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(10, DISPATCH_METHOD, {1L, 2L, 3L}, sum), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(999, DISPATCH_METHOD, {}, sum), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ComDispatch, ObjectArgumentArrivesAsItIs) {
    _variant_t same;
    EXPECT_EQ(Call(11, DISPATCH_METHOD, {_variant_t(Dispatch())}, same), S_OK);
    EXPECT_EQ(V_BOOL(&same), VARIANT_TRUE);
}

TEST_F(ComDispatch, FailureCarriesSourceAndWords) {
    _variant_t none;
    EXPECT_EQ(Call(9, DISPATCH_METHOD, {_variant_t(L"It broke.")}, none), DISP_E_EXCEPTION);
    const _bstr_t source(exception.bstrSource, false), words(exception.bstrDescription, false);
    EXPECT_EQ(exception.scode, static_cast<HRESULT>(0x800A0005));
    EXPECT_STREQ(source, toyProgId);
    EXPECT_STREQ(words, L"It broke.");
    EXPECT_EQ(exception.bstrHelpFile, nullptr);
}

TEST_F(ComDispatch, RecordIsSetForCallersOfTheTableToo) {
    EXPECT_EQ(toy->Fail(_bstr_t(L"Again.")), static_cast<HRESULT>(0x800A0005));
    ComPtr<IErrorInfo> record;
    ASSERT_EQ(GetErrorInfo(0, &record), S_OK);
    _bstr_t source, words;
    record->GetSource(source.GetAddress());
    record->GetDescription(words.GetAddress());
    EXPECT_STREQ(source, toyProgId);
    EXPECT_STREQ(words, L"Again.");
    EXPECT_EQ(toy->InterfaceSupportsErrorInfo(__uuidof(IToy)), S_OK);
    EXPECT_EQ(toy->InterfaceSupportsErrorInfo(IID_IOleObject), S_FALSE);
}

TEST_F(ComDispatch, NarrowWordsAreReportedToo) {
    EXPECT_EQ(ReportFailure(E_FAIL, toyProgId, "plain"), E_FAIL);
    ComPtr<IErrorInfo> record;
    ASSERT_EQ(GetErrorInfo(0, &record), S_OK);
    _bstr_t words;
    record->GetDescription(words.GetAddress());
    EXPECT_STREQ(words, L"plain");
}

TEST_F(ComDispatch, TypeInformationIsTheDualInterfaces) {
    UINT count = 0;
    EXPECT_EQ(Dispatch()->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(Dispatch()->GetTypeInfo(1, 0, &info), DISP_E_BADINDEX);
    ASSERT_EQ(Dispatch()->GetTypeInfo(0, 0, &info), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, __uuidof(IToy)));
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    info->ReleaseTypeAttr(attributes);
}

TEST_F(ComDispatch, ManyThreadsGetTheSameTypeInformation) {
    ForgetTypeInfo();
    std::vector<ComPtr<ITypeInfo>> found(8);
    {
        std::vector<std::jthread> threads;
        for (ComPtr<ITypeInfo>& each : found)
            threads.emplace_back([&each] { TypeInfoOf(__uuidof(IToy), each); });
    }
    for (const auto& each : found)
        EXPECT_EQ(each.Get(), found[0].Get());
    EXPECT_NE(found[0].Get(), nullptr);
    ComPtr<ITypeInfo> none;
    EXPECT_TRUE(FAILED(TypeInfoOf(IID_IStream, none)));
}

TEST_F(ComDispatch, EnumeratorGivesTheStringsAndItsCopyGoesOn) {
    const _variant_t object = Get(DISPID_NEWENUM);
    ASSERT_EQ(V_VT(&object), VT_UNKNOWN);
    ComPtr<IEnumVARIANT> strings;
    ASSERT_EQ(V_UNKNOWN(&object)->QueryInterface(IID_PPV_ARGS(&strings)), S_OK);
    _variant_t one;
    EXPECT_EQ(strings->Next(1, &one, nullptr), S_OK);
    EXPECT_STREQ(V_BSTR(&one), L"one");
    ComPtr<IEnumVARIANT> copy;
    ASSERT_EQ(strings->Clone(&copy), S_OK);
    VARIANT rest[3] = {};
    ULONG count = 0;
    EXPECT_EQ(copy->Next(3, rest, &count), S_FALSE);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(SysStringLen(V_BSTR(&rest[0])), 0u);
    EXPECT_STREQ(V_BSTR(&rest[1]), L"three");
    for (VARIANT& each : rest)
        VariantClear(&each);
    EXPECT_EQ(strings->Skip(2), S_OK);
    EXPECT_EQ(strings->Skip(1), S_FALSE);
    EXPECT_EQ(strings->Next(2, rest, nullptr), E_POINTER);
    EXPECT_EQ(strings->Reset(), S_OK);
    EXPECT_EQ(strings->Skip(3), S_OK);
}

TEST_F(ComDispatch, ClassInformationNamesCoclassAndEvents) {
    ComPtr<IProvideClassInfo2> classInfo;
    ASSERT_EQ(toy.As(&classInfo), S_OK);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(classInfo->GetClassInfo(&info), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, __uuidof(Toy)));
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    info->ReleaseTypeAttr(attributes);
    GUID events = {};
    EXPECT_EQ(classInfo->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events), S_OK);
    EXPECT_TRUE(IsEqualGUID(events, __uuidof(_IToyEvents)));
    EXPECT_EQ(classInfo->GetGUID(99, &events), E_INVALIDARG);
}

TEST_F(ComDispatch, PagesAndSafety) {
    ComPtr<ISpecifyPropertyPages> pages;
    ASSERT_EQ(toy.As(&pages), S_OK);
    CAUUID list = {};
    ASSERT_EQ(pages->GetPages(&list), S_OK);
    ASSERT_EQ(list.cElems, 2u);
    EXPECT_TRUE(IsEqualGUID(list.pElems[1], __uuidof(IToy)));
    CoTaskMemFree(list.pElems);
    DWORD supported = 9, enabled = 9;
    EXPECT_EQ(toy->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
    EXPECT_EQ(supported | enabled, 0u);
    constexpr DWORD safe = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;
    EXPECT_EQ(toy->SetInterfaceSafetyOptions(IID_IDispatch, safe, safe), E_FAIL);
    EXPECT_EQ(toy->SetInterfaceSafetyOptions(IID_IDispatch, safe, INTERFACESAFE_FOR_UNTRUSTED_DATA), E_FAIL);
    EXPECT_EQ(toy->SetInterfaceSafetyOptions(IID_IDispatch, safe, 0), S_OK);
}

} // namespace
