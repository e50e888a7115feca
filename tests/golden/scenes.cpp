#include "scenes.h"

#include <string>

namespace {

constexpr char hex[] = "0123456789ABCDEF";
constexpr int warning = TARN_COLOR_BROWN * 16 + TARN_COLOR_WHITE;

int ColorOf(int foreground, int background) {
    return background * 16 + foreground;
}

std::string Numbered(const std::string& text, int number) {
    return text + " " + std::to_string(number);
}

void PrintLines(Stage& stage, int first, int last) {
    for (int line = first; line <= last; ++line)
        stage.PrintIn(line % 5 ? GetColor(stage.Terminal()) : warning,
                      Numbered("line", line) + (line == last ? "" : "\r\n"));
}

// A row for each background, a column for each foreground.
void PlayColors(Stage& stage) {
    for (int background = 0; background < 16; ++background) {
        stage.MoveTo(background, 0);
        for (int foreground = 0; foreground < 16; ++foreground) {
            stage.PrintIn(ColorOf(foreground, background), {' ', hex[background], hex[foreground]});
        }
        stage.PrintIn(ColorOf(TARN_COLOR_LIGHT_GRAY, TARN_COLOR_BLACK), " plain");
    }
}

template <int filter>
void PlayFiltered(Stage& stage) {
    PlayColors(stage);
    SetColorFilter(stage.Terminal(), filter);
    stage.Select(3, 6, 2 * 60); // down to row 5
}

void PlaySelection(Stage& stage) {
    PrintLines(stage, 1, 12);
    stage.MoveTo(4, 20);
    stage.PrintIn(ColorOf(TARN_COLOR_YELLOW, TARN_COLOR_BLUE), "yellow on blue");
    stage.Select(2, 3, 3 * 60 + 25);
}

void PlayScrollback(Stage& stage) {
    PrintLines(stage, 1, 40);
    for (int i = 0; i < 10; ++i)
        SendMessageA(stage.Terminal(), WM_VSCROLL, SB_LINEUP, 0);
}

void PlayScrollbackPrint(Stage& stage) {
    SetAutoScroll(stage.Terminal(), TARN_AUTO_SCROLL_NONE);
    PlayScrollback(stage);
    stage.Settle();
    stage.Print("\r\nprinted while scrolled back\r\nand once more");
}

void PlayLineDrawing(Stage& stage) {
    stage.Print("\x1B[2;5H\x1B(0lqqqqqqqqqwqqqqqqqqqk\x1B(B  designated by ESC ( 0");
    stage.Print("\x1B[3;5H\x0Ex\x0F left    \x0Ex\x0F right   \x0Ex\x0F  by shift out and in");
    stage.Print("\x1B[4;5H\x1B(0tqqqqqqqqqnqqqqqqqqqu\x1B(B  lqk is text again");
    stage.Print("\x1B[5;5H\x1B(0xaaaaaaaaax yaz     x\x1B(B");
    stage.Print("\x1B[6;5H\x1B(0mqqqqqqqqqvqqqqqqqqqj\x1B(B");
    stage.Print("\x1B[8;5H\x1B[1;33;44m\x1B(0lqqqqqk\x1B[9;5Hx\x1B(Bcolor\x1B(0x\x1B[10;5Hmqqqqqj\x1B(B\x1B["
                "0;37;40m");
}

void PlayLargeWindow(Stage& stage) {
    for (int row = 0; row < 8; ++row) {
        stage.MoveTo(row, 0);
        stage.PrintIn(ColorOf(TARN_COLOR_WHITE, row),
                      Numbered("row", row) + "  the band takes the last run's color");
        stage.MoveTo(row, 39);
    }
    stage.MoveTo(7, 0);
    stage.PrintIn(ColorOf(TARN_COLOR_BLACK, TARN_COLOR_CYAN), std::string(40, '.'));
}

// The last cell takes the colors of the cell before it.
void PlayLastColumn(Stage& stage) {
    for (int row = 0; row < 6; ++row) {
        stage.MoveTo(row, 50);
        stage.PrintIn(ColorOf(TARN_COLOR_WHITE, TARN_COLOR_RED), "nine red");
        stage.MoveTo(row, 59);
        stage.PrintIn(ColorOf(TARN_COLOR_WHITE, TARN_COLOR_GREEN), "G");
    }
    stage.MoveTo(8, 0);
    stage.PrintIn(ColorOf(TARN_COLOR_WHITE, TARN_COLOR_BLUE), std::string(60, 'b'));
    stage.MoveTo(10, 59);
    stage.PrintIn(ColorOf(TARN_COLOR_WHITE, TARN_COLOR_GREEN), "G");
}

void PlayRegion(Stage& stage) {
    for (int row = 1; row <= 16; ++row)
        stage.Print("\x1B[" + std::to_string(row) + ";1H" + Numbered("row", row));
    stage.Print("\x1B[5;10r\x1B[33m");
    for (int line = 1; line <= 9; ++line)
        stage.Print(Numbered("in the region", line) + "\r\n");
}

void PlayRendition(Stage& stage) {
    stage.Print(
        "\x1B[2;3H\x1B[7mreverse\x1B[27m plain \x1B[1mbright\x1B[22m plain \x1B[1;7mbright reverse\x1B[0m");
    stage.Print("\x1B[4;3H\x1B[31;44mred on blue \x1B[7mreversed\x1B[0m still red on blue\x1B[37;40m");
    stage.Print("\x1B[6;3H\x1B[4munderline is bright\x1B[24m \x1B[5mblink is plain\x1B[25m");
    stage.Print("\x1B[8;3H\x1B[37;44mconceal \x1B[8mkeeps common bits\x1B[37;40m");
    stage.Print("\x1B[10;3H\x1B[7mrow \x1B[K erased cells are not reversed\x1B[0m");
    for (int color = 0; color < 8; ++color)
        stage.Print("\x1B[12;" + std::to_string(3 + 6 * color) + "H\x1B[1;37;4" + std::to_string(color) +
                    "m  4" + std::to_string(color) + "  \x1B[13;" + std::to_string(3 + 6 * color) +
                    "H\x1B[0;40;3" + std::to_string(color) + "m  3" + std::to_string(color) + "  ");
}

void PlayProportional(Stage& stage) {
    stage.Print("\x1B[1;33mProportional text\x1B[0;37m is placed by its width:\r\n");
    stage.Print("iiiiiiiiii \x1B[44mtwenty narrow\x1B[40m letters and ten more\r\n");
    stage.Print("MMMMMMMMMM \x1B[41mtwenty wide\x1B[40m letters and ten more\r\n");
    stage.Print("one \x1B[42mtwo\x1B[40m three \x1B[45mfour\x1B[40m five \x1B[46msix\x1B[40m seven");
    stage.Select(1, 4, 60 + 8);
}

// All that the font has, but the bytes that do something.
void PlayCharacters(Stage& stage) {
    for (int row = 0; row < 16; ++row) {
        stage.MoveTo(row, 0);
        for (int column = 0; column < 16; ++column) {
            const int code = row * 16 + column;
            const bool acts = code == 0 || (code >= 7 && code <= 15) || code == 0x1B;
            stage.PrintIn(ColorOf(TARN_COLOR_WHITE, (row + column) % 2),
                          {' ', acts ? ' ' : static_cast<char>(code)});
        }
    }
}

void PlayErased(Stage& stage) {
    for (int row = 1; row <= 16; ++row)
        stage.Print("\x1B[" + std::to_string(row) + ";1H" + std::string(59, static_cast<char>('a' + row)));
    stage.Print("\x1B[41m\x1B[3;20H\x1B[K\x1B[42m\x1B[5;20H\x1B[1K\x1B[44m\x1B[7;20H\x1B[2K\x1B[45m\x1B[13;"
                "20H\x1B[J");
}

void PlayLineFeeds(Stage& stage) {
    PrintLines(stage, 1, 10);
    stage.Settle();
    stage.Print("\r\n");
    PrintLines(stage, 11, 23);
}

void PlayNarrowWindow(Stage& stage) {
    for (int row = 0; row < 16; ++row) {
        stage.MoveTo(row, 0);
        stage.PrintIn(ColorOf(TARN_COLOR_WHITE, row % 8),
                      "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVW");
    }
    stage.MoveTo(0, 0);
    stage.Print("x");
    stage.Settle();
    for (int i = 0; i < 7; ++i)
        SendMessageA(stage.Terminal(), WM_HSCROLL, SB_LINERIGHT, 0);
    for (int i = 0; i < 3; ++i)
        SendMessageA(stage.Terminal(), WM_VSCROLL, SB_LINEDOWN, 0);
}

void Drag(Stage& stage, POINT from, POINT to, int moves) {
    stage.Settle();
    stage.Mouse(WM_LBUTTONDOWN, from, MK_LBUTTON);
    for (int i = 0; i < moves; ++i)
        stage.Mouse(WM_MOUSEMOVE, to, MK_LBUTTON);
    stage.Mouse(WM_LBUTTONUP, to, 0);
    stage.Settle();
    SetFocus(nullptr); // no caret in the picture
}

void PlayMouseDown(Stage& stage) {
    PrintLines(stage, 1, 16);
    Drag(stage, stage.At(2.5, 4), stage.At(6.5, 3), 1);
}

void PlayMouseUpwards(Stage& stage) {
    PrintLines(stage, 1, 16);
    Drag(stage, stage.At(9.5, 6), stage.At(4.5, 2), 1);
}

// Two rows come down from the scrollback for two moves above the window.
void PlayMouseAboveWindow(Stage& stage) {
    PrintLines(stage, 1, 30);
    Drag(stage, stage.At(1.5, 4), stage.At(-0.5, 2), 2);
}

void PlayMouseBelowWindow(Stage& stage) {
    PrintLines(stage, 1, 30);
    for (int i = 0; i < 8; ++i)
        SendMessageA(stage.Terminal(), WM_VSCROLL, SB_LINEUP, 0);
    Drag(stage, stage.At(12.5, 1), stage.At(16.5, 6), 3);
}

void PlayMouseShift(Stage& stage) {
    PrintLines(stage, 1, 16);
    Drag(stage, stage.At(2.5, 4), stage.At(2.5, 4), 0);
    stage.Mouse(WM_LBUTTONDOWN, stage.At(5.5, 5), MK_LBUTTON | MK_SHIFT);
    stage.Mouse(WM_LBUTTONUP, stage.At(5.5, 5), MK_SHIFT);
    stage.Settle();
    SetFocus(nullptr);
}

// Cells are found by the widths of the letters before them.
void PlayMouseProportional(Stage& stage) {
    stage.Print("\r\nMMMMMMMM, then iiiiiiiiiiiiiiiiiiiiiii\r\niiiiiiiiiiiiiiii, then MMMMMMMM\r\n");
    Drag(stage, stage.At(1.5, 12), stage.At(2.5, 8), 1);
}

// What the window shows must follow changes of size, of the scrollback and of the selection.

void PlayGrown(Stage& stage) {
    SetRows(stage.Terminal(), 6);
    PrintLines(stage, 1, 6);
    stage.Settle();
    SetColor(stage.Terminal(), ColorOf(TARN_COLOR_BLACK, TARN_COLOR_LIGHT_GRAY));
    SetRows(stage.Terminal(), 20);
}

void PlayScrollbackLost(Stage& stage) {
    PlayScrollback(stage);
    stage.Settle();
    SetScrollRows(stage.Terminal(), 30);
}

void PlayScrolledSelection(Stage& stage) {
    PrintLines(stage, 1, 12);
    stage.Select(2, 3, 2 * 60 + 10);
    stage.Settle();
    PrintLines(stage, 13, 40);
}

void PlayRowsTakenWhileScrolled(Stage& stage) {
    PrintLines(stage, 1, 40);
    stage.Settle();
    for (int i = 0; i < 3; ++i)
        SendMessageA(stage.Terminal(), WM_VSCROLL, SB_LINEDOWN, 0);
    stage.Settle();
    SetRows(stage.Terminal(), 10);
}

const Scene scenes[] = {
    {"colors", {}, PlayColors},
    {"filter-full", {}, PlayFiltered<TARN_COLOR_FILTER_FULL>},
    {"filter-gray", {}, PlayFiltered<TARN_COLOR_FILTER_GRAY>},
    {"filter-black-and-white", {}, PlayFiltered<TARN_COLOR_FILTER_BW>},
    {"selection", {}, PlaySelection},
    {"scrollback", {.scrollRows = 50}, PlayScrollback},
    {"scrollback-printed-under", {.scrollRows = 50}, PlayScrollbackPrint},
    {"line-drawing", {.emulation = TARN_EMULATION_VT100}, PlayLineDrawing},
    {"large-window", {.columns = 40, .rows = 8, .shownColumns = 60, .shownRows = 14}, PlayLargeWindow},
    {"narrow-window", {.shownColumns = 30, .shownRows = 9}, PlayNarrowWindow},
    {"last-column", {}, PlayLastColumn},
    {"region", {}, PlayRegion},
    {"line-feeds", {}, PlayLineFeeds},
    {"rendition", {}, PlayRendition},
    {"erased", {}, PlayErased},
    {"characters", {.emulation = TARN_EMULATION_TTY, .columns = 33}, PlayCharacters},
    {"proportional", {.lettering = Lettering::Proportional}, PlayProportional},
    {"grown", {}, PlayGrown},
    {"scrollback-lost", {.scrollRows = 50}, PlayScrollbackLost},
    {"scrolled-selection", {}, PlayScrolledSelection},
    {"rows-taken-while-scrolled", {.scrollRows = 50, .shownRows = 12}, PlayRowsTakenWhileScrolled},
    {"mouse-down", {}, PlayMouseDown},
    {"mouse-upwards", {}, PlayMouseUpwards},
    {"mouse-above-window", {.scrollRows = 50}, PlayMouseAboveWindow},
    {"mouse-below-window", {.scrollRows = 50}, PlayMouseBelowWindow},
    {"mouse-shift", {}, PlayMouseShift},
    {"mouse-proportional", {.lettering = Lettering::Proportional}, PlayMouseProportional},
};

} // namespace

std::span<const Scene> Scenes() {
    return scenes;
}
