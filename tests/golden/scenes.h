// The scenes that pictures.cpp plays, one picture each.
#pragma once

#include "stage.h"

#include <span>

struct Scene {
    const char* name; // of the picture's file, too
    StageSetting setting;
    void (*play)(Stage& stage);
};

std::span<const Scene> Scenes();
