// The map of a control's stored properties: what is stored, in which order, and the property page that each
// names.
#pragma once

#include <oaidl.h>
#include <windows.h>

#include <span>
#include <vector>

enum class StoredAs {
    Width,
    Height,
    Value,
    Object
}; // Width, Height: of the extent, in HIMETRIC, without a type

enum class Page { None, Terminal, Communications, WireTap, Font, About };

struct PropertyRow {
    const wchar_t* name; // in a property bag
    DISPID id;
    StoredAs kind = StoredAs::Value;
    Page page = Page::None;

    bool IsRaw() const { return kind == StoredAs::Width || kind == StoredAs::Height; }
};

std::span<const PropertyRow> StoredProperties();

// Each once, in the order in which they come up.
std::vector<Page> NamedPages();
