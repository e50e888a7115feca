// Tables of the interfaces by which an object may be asked for.
#pragma once

#include "interfaces.h"

// A row: the interface asked for, and the base class by which it is reached. The second is needed where
// several bases derive from the interface, IDispatch or IOleWindow for instance.
template <class Asked, class Road = Asked>
struct FaceRow {
    template <class Object>
    static void* Find(Object& object, REFIID iid) {
        return IsEqualIID(iid, __uuidof(Asked)) ? Of(object) : nullptr;
    }
    template <class Object>
    static void* Of(Object& object) {
        return static_cast<Asked*>(static_cast<Road*>(&object));
    }
};

// The first row that fits counts. A table may be a row of another one.
template <class First, class... Others>
struct FaceTable {
    template <class Object>
    static void* Find(Object& object, REFIID iid) {
        void* found = First::Find(object, iid);
        static_cast<void>((found || ... || (found = Others::Find(object, iid))));
        return found;
    }
    // The object's identity: what a question for IUnknown gets.
    template <class Object>
    static void* Of(Object& object) {
        return First::Of(object);
    }
};
