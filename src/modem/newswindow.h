// A window that is never seen: what another thread sends to it is handed on, on the thread that made it.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

class NewsWindow {
  public:
    using Take = std::function<void(WPARAM news)>;

    // wParam is the news, lParam a const char* of static life: the label of what may go wrong with it.
    static constexpr UINT message = WM_APP;

    explicit NewsWindow(Take take);
    // On its own thread; also inside of take.
    ~NewsWindow();
    NewsWindow(const NewsWindow&) = delete;
    NewsWindow& operator=(const NewsWindow&) = delete;

    // Null if there is none to be had.
    HWND Handle() const { return hWnd_; }

  private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    std::shared_ptr<const Take> take_; // lives through its own call
    HWND hWnd_;
};
