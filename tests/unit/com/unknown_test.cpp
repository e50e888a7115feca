// Reference counts, interface look-up, class objects, the module's locks, the wall.
#include "toycontrol.h"

#include "com/classfactory.h"

#include <gtest/gtest.h>
#include <new>

namespace {

template <class Interface>
ComPtr<Interface> Ask(IUnknown* object) {
    ComPtr<Interface> asked;
    object->QueryInterface(IID_PPV_ARGS(&asked));
    return asked;
}

TEST(ComUnknown, EveryInterfaceLeadsToTheSameIdentityAndBack) {
    ComPtr<ToyControl> toy;
    ASSERT_EQ(NewObject(toy), S_OK);
    const IID* all[] = {
        &IID_IUnknown,
        &__uuidof(IToy),
        &IID_IDispatch,
        &IID_IOleObject,
        &IID_IOleControl,
        &IID_IOleWindow,
        &IID_IOleInPlaceObject,
        &IID_IOleInPlaceObjectWindowless,
        &IID_IOleInPlaceActiveObject,
        &IID_IViewObject,
        &IID_IViewObject2,
        &IID_IViewObjectEx,
        &IID_IDataObject,
        &IID_IQuickActivate,
        &IID_IConnectionPointContainer,
        &IID_IProvideClassInfo,
        &IID_IProvideClassInfo2,
        &IID_ISpecifyPropertyPages,
        &IID_IObjectSafety,
        &IID_ISupportErrorInfo,
    };
    const ComPtr<IUnknown> identity = Ask<IUnknown>(static_cast<IToy*>(toy.Get()));
    for (const IID* from : all) {
        ComPtr<IUnknown> face;
        ASSERT_EQ(toy->QueryInterface(*from, reinterpret_cast<void**>(face.GetAddressOf())), S_OK);
        EXPECT_EQ(Ask<IUnknown>(face.Get()).Get(), identity.Get());
        for (const IID* to : all) {
            ComPtr<IUnknown> other;
            EXPECT_EQ(face->QueryInterface(*to, reinterpret_cast<void**>(other.GetAddressOf())), S_OK);
        }
    }
}

TEST(ComUnknown, ForeignInterfaceIsRefusedAndTheAnswerCleared) {
    ComPtr<ToyControl> toy;
    ASSERT_EQ(NewObject(toy), S_OK);
    void* object = toy.Get();
    EXPECT_EQ(toy->QueryInterface(IID_IStream, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(toy->QueryInterface(IID_IStream, nullptr), E_POINTER);
}

TEST(ComUnknown, LastReleaseEndsTheObjectOnceAlthoughItsEndTakesReferences) {
    const LONG locks = ModuleLockCount();
    const int alive = ToyControl::alive;
    int releases = 0;
    {
        ComPtr<ToyControl> toy;
        ASSERT_EQ(NewObject(toy), S_OK);
        toy->onRelease = [&] { ++releases; };
        EXPECT_EQ(ToyControl::alive, alive + 1);
        EXPECT_EQ(ModuleLockCount(), locks + 1);
    }
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(ToyControl::alive, alive);
    EXPECT_EQ(ModuleLockCount(), locks);
}

TEST(ComUnknown, WhatTheEndThrowsStaysInside) {
    const int alive = ToyControl::alive;
    ComPtr<ToyControl> toy;
    ASSERT_EQ(NewObject(toy), S_OK);
    toy->onRelease = [] { throw 1; };
    toy.Reset();
    EXPECT_EQ(ToyControl::alive, alive);
}

TEST(ComUnknown, FailedConstructionLeavesNothing) {
    const int alive = ToyControl::alive;
    const LONG locks = ModuleLockCount();
    ToyControl::constructResult = E_ACCESSDENIED;
    ComPtr<ToyControl> toy;
    EXPECT_EQ(NewObject(toy), E_ACCESSDENIED);
    ToyControl::constructResult = S_OK;
    EXPECT_EQ(toy.Get(), nullptr);
    EXPECT_EQ(ToyControl::alive, alive);
    EXPECT_EQ(ModuleLockCount(), locks);
}

TEST(ComWall, ExceptionsBecomeCodes) {
    const auto thrown = [](auto value) { return AsResult([&]() -> HRESULT { throw value; }); };
    EXPECT_EQ(thrown(std::bad_alloc()), E_OUTOFMEMORY);
    EXPECT_EQ(thrown(_com_error(DISP_E_BADINDEX)), DISP_E_BADINDEX);
    EXPECT_EQ(thrown(_com_error(S_OK)), E_UNEXPECTED);
    EXPECT_EQ(thrown(std::string("text")), E_UNEXPECTED);
    EXPECT_EQ(AsResult([] { return S_FALSE; }), S_FALSE);
}

constexpr ClassRow classes[] = {{&__uuidof(Toy), CreateClass<ToyControl>}};

TEST(ComClassFactory, MakesTheClassesOfItsTableAndNoOthers) {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(GetClassObject(classes, __uuidof(Toy), IID_PPV_ARGS(&factory)), S_OK);
    ComPtr<IToy> toy;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_PPV_ARGS(&toy)), S_OK);
    EXPECT_NE(toy.Get(), nullptr);
    void* object = factory.Get();
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(GetClassObject(classes, __uuidof(IToy), IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(GetClassObject(classes, __uuidof(Toy), IID_IStream, &object), E_NOINTERFACE);
    EXPECT_EQ(GetClassObject(classes, __uuidof(Toy), IID_IClassFactory, nullptr), E_POINTER);
}

TEST(ComClassFactory, RefusesAggregation) {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(GetClassObject(classes, __uuidof(Toy), IID_PPV_ARGS(&factory)), S_OK);
    void* object = factory.Get();
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
}

TEST(ComClassFactory, ObjectsFactoriesAndLocksKeepTheModule) {
    EXPECT_EQ(CanUnloadNow(), S_OK);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(GetClassObject(classes, __uuidof(Toy), IID_PPV_ARGS(&factory)), S_OK);
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
    factory->LockServer(TRUE);
    ComPtr<IClassFactory> kept = std::move(factory);
    kept.Reset();
    EXPECT_EQ(CanUnloadNow(), S_FALSE) << "LockServer";
    ASSERT_EQ(GetClassObject(classes, __uuidof(Toy), IID_PPV_ARGS(&factory)), S_OK);
    factory->LockServer(FALSE);
    factory.Reset();
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

} // namespace
