#include "lettering.h"

#include "rasterfont.h"

#include <string>

namespace {

constexpr char rasterFace[] = "Tarn Golden";
constexpr char scalableFace[] = "DejaVu Sans Mono";
constexpr int height = 13; // pixels of a letter

Font Make(const char* face, BYTE characterSet) {
    return Font(CreateFontA(-height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, characterSet,
                            OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, NONANTIALIASED_QUALITY,
                            FIXED_PITCH | FF_MODERN, face));
}

bool Has(HFONT font, const char* face) {
    char found[LF_FACESIZE] = {};
    const HDC dc = CreateCompatibleDC(nullptr);
    SelectObject(dc, font);
    GetTextFaceA(dc, LF_FACESIZE, found);
    DeleteDC(dc);
    return !lstrcmpA(found, face);
}

std::string FontPath() {
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    return std::string(folder) + "golden.fnt";
}

bool Install() {
    const Font scalable = Make(scalableFace, DEFAULT_CHARSET);
    const std::string path = FontPath();
    return Has(scalable.get(), scalableFace) && WriteRasterFont(path, rasterFace, scalable.get()) &&
           AddFontResourceExA(path.c_str(), FR_PRIVATE, nullptr);
}

} // namespace

bool NeedFixedFont() {
    static const bool installed = Install();
    return installed && Has(MakeFixedFont().get(), rasterFace);
}

Font MakeFixedFont() {
    return Make(rasterFace, OEM_CHARSET);
}

SIZE MeasureCell(HWND window, HFONT font) {
    SIZE cell = {};
    const HDC dc = GetDC(window);
    const HGDIOBJ before = SelectObject(dc, font);
    GetTextExtentPoint32A(dc, "x", 1, &cell);
    SelectObject(dc, before);
    ReleaseDC(window, dc);
    return cell;
}
