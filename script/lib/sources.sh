# shellcheck shell=bash
# Our C and C++ sources below the current folder, each closed by a NUL.
list_sources() {
    find . \( -path ./build -o -path ./.git \) -prune -o -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) -print0
}
