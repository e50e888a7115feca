// Plays each scene in a window and stores what the window shows: pictures FOLDER [SCENE ...]
//
// A picture that came about bit by bit must be the one that painting everything anew gives.
#include "scenes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

bool IsWanted(const Scene& scene, int count, char** words) {
    return count <= 2 || std::any_of(words + 2, words + count,
                                     [&](const char* word) { return !std::strcmp(word, scene.name); });
}

bool Fail(const Scene& scene, const std::string& what) {
    std::printf("%s: %s\n", scene.name, what.c_str());
    return false;
}

bool Play(const Scene& scene, const std::string& folder) {
    Stage stage(scene.setting);
    if (!stage.Settle())
        return Fail(scene, "the empty window does not settle");
    scene.play(stage);
    if (!stage.Settle())
        return Fail(scene, "does not settle");
    const Bitmap picture = stage.Picture();
    if (!picture.Save(folder + "\\" + scene.name + ".bmp"))
        return Fail(scene, "can't be stored");
    const Bitmap repainted = stage.Repainted();
    const int stale = picture.Differences(repainted);
    if (!stale)
        return true;
    repainted.Save(folder + "\\" + scene.name + ".repainted.bmp");
    return Fail(scene, std::to_string(stale) + " pixels are not as painting everything anew gives them");
}

} // namespace

int main(int count, char** words) {
    if (count < 2)
        return 2;
    if (!NeedFixedFont()) {
        std::puts("there is no DejaVu Sans Mono to draw the font from");
        return 3;
    }
    bool good = true;
    for (const Scene& scene : Scenes())
        good &= !IsWanted(scene, count, words) || Play(scene, words[1]);
    return good ? 0 : 1;
}
