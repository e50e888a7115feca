// What the benchmarks feed to terminals: streams that are the same in every run and in every program.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

inline constexpr size_t streamPiece = 1024; // bytes at a time, as the line brings them
inline constexpr int streamColumns = 80;    // of the screens that take the streams
inline constexpr int streamRows = 25;

// Lines of varied length with CR and LF, so many bytes at the least.
std::string PlainLines(size_t least);

// What a program that uses the whole screen sends: colours, moves, erasures and text in about equal parts.
// None of it is a code that terminals understand differently, so that all end with the same screen.
std::string ScreenWork(size_t least);

// Hands a stream over piece by piece: take(bytes, count).
template <class Take>
void FeedPieces(const std::string& stream, Take take) {
    for (size_t i = 0; i < stream.size(); i += streamPiece)
        take(stream.data() + i, static_cast<int>(std::min(streamPiece, stream.size() - i)));
}
