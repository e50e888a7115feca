// A picture in memory that GDI can draw into.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

class Bitmap {
  public:
    explicit Bitmap(SIZE size);

    HDC Context() const { return dc_.get(); }
    SIZE Size() const { return size_; }

    // How many pixels of the two differ, all of them if the sizes do.
    int Differences(const Bitmap& other) const;

    // As a .bmp file of 24 bits a pixel.
    bool Save(const std::string& path) const;

  private:
    struct ContextEnd {
        void operator()(HDC dc) const { DeleteDC(dc); }
    };
    struct ObjectEnd {
        void operator()(HGDIOBJ object) const { DeleteObject(object); }
    };

    size_t PixelCount() const;

    SIZE size_;
    DWORD* pixels_ = nullptr; // owned by the bitmap
    std::unique_ptr<HBITMAP__, ObjectEnd> bitmap_;
    std::unique_ptr<HDC__, ContextEnd> dc_; // goes first, it has the bitmap selected
};
