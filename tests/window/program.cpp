#include "tests/window/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>

namespace {

constexpr DWORD kPatience = 30'000;  // milliseconds

std::string without_ampersand(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '&'), text.end());
  return text;
}

std::string folder() {
  char path[MAX_PATH];
  const DWORD length = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  const std::string whole(path, length);
  return whole.substr(0, whole.find_last_of("\\/") + 1);
}

/// The caption as the system knows it, so that a program in the middle of a transfer need not be asked.
std::string caption_of(HWND window) {
  char text[256];
  const int length = ::GetWindowTextA(window, text, 256);
  return {text, static_cast<std::size_t>(length)};
}

struct Search {
  DWORD process;
  std::string window_class;
  std::string title;
  HWND found;
};

BOOL CALLBACK match_window(HWND window, LPARAM data) {
  auto* const search = reinterpret_cast<Search*>(data);
  DWORD process = 0;
  ::GetWindowThreadProcessId(window, &process);
  const bool named = search->title.empty() || text_of(window) == search->title;
  if (process != search->process || !::IsWindowVisible(window) || class_of(window) != search->window_class || !named) {
    return TRUE;
  }
  search->found = window;
  return FALSE;
}

HWND find_window(DWORD process, const std::string& window_class, const std::string& title) {
  Search search{process, window_class, title, nullptr};
  ::EnumWindows(match_window, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

BOOL CALLBACK collect(HWND child, LPARAM data) {
  if ((::GetWindowLongA(child, GWL_STYLE) & WS_VISIBLE) != 0)
    reinterpret_cast<std::vector<HWND>*>(data)->push_back(child);
  return TRUE;
}

}  // namespace

Program::Program(const std::string& arguments) {
  std::string line = "\"";
  line.append(folder()).append("sectorix.exe\" ").append(arguments);
  STARTUPINFOA start{};
  start.cb = sizeof(start);
  if (!::CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process_)) {
    ADD_FAILURE() << "cannot start " << line << ": error " << ::GetLastError();
    return;
  }
  wait_until([this] { return (window_ = find_window(process_.dwProcessId, "SectorixMain", "")) != nullptr; });
  EXPECT_NE(window_, nullptr) << "no window";
  ::WaitForInputIdle(process_.hProcess, kPatience);
  wait_until([this] { return text_of(window_).rfind("Sectorix v.", 0) == 0 && !text_of(edit(kText)).empty(); });
  ::SetForegroundWindow(window_);
}

Program::~Program() {
  if (running()) ::TerminateProcess(process_.hProcess, 77);
  ::WaitForSingleObject(process_.hProcess, kPatience);
  ::CloseHandle(process_.hThread);
  ::CloseHandle(process_.hProcess);
}

std::vector<HWND> Program::children() const {
  std::vector<HWND> all;
  ::EnumChildWindows(window_, collect, reinterpret_cast<LPARAM>(&all));
  return all;
}

HWND Program::find(const std::string& window_class, const std::string& caption) const {
  for (HWND child : children()) {
    if (_stricmp(class_of(child).c_str(), window_class.c_str()) == 0 &&
        without_ampersand(caption_of(child)) == caption) {
      return child;
    }
  }
  return nullptr;
}

HWND Program::edit(std::size_t n) const {
  for (HWND child : children()) {
    if (_stricmp(class_of(child).c_str(), "EDIT") == 0 && n-- == 0) return child;
  }
  return nullptr;
}

void Program::press(const std::string& caption) const {
  HWND const control = button(caption);
  ASSERT_NE(control, nullptr) << caption;
  ::PostMessageA(control, BM_CLICK, 0, 0);
}

void Program::choose(const std::string& caption, int number) const {
  press(caption);
  ASSERT_TRUE(wait_until([] { return ::FindWindowA("#32768", nullptr) != nullptr; }));
  for (int i = 0; i < number; ++i) key(VK_DOWN);
  key(VK_RETURN);
}

void Program::key(int virtual_key) const {
  HWND const target = focus();
  const LPARAM scan = static_cast<LPARAM>(::MapVirtualKeyA(static_cast<UINT>(virtual_key), MAPVK_VK_TO_VSC)) << 16;
  ::PostMessageA(target, WM_KEYDOWN, static_cast<WPARAM>(virtual_key), scan | 1);
  ::PostMessageA(target, WM_KEYUP, static_cast<WPARAM>(virtual_key), scan | static_cast<LPARAM>(0xC0000001));
}

void Program::type(const std::string& text) const {
  HWND const target = focus();
  for (const char letter : text) ::PostMessageA(target, WM_CHAR, static_cast<WPARAM>(letter), 1);
}

void Program::access_key(char letter) const {
  constexpr LPARAM kAltIsDown = 1 << 29;
  ::PostMessageA(focus(), WM_SYSCHAR, static_cast<WPARAM>(letter), kAltIsDown | 1);
}

HWND Program::focus() const {
  GUITHREADINFO facts{};
  facts.cbSize = sizeof(facts);
  ::GetGUIThreadInfo(::GetWindowThreadProcessId(window_, nullptr), &facts);
  return facts.hwndFocus;
}

void Program::set_focus(HWND control) const {
  const DWORD own = ::GetCurrentThreadId();
  const DWORD theirs = ::GetWindowThreadProcessId(window_, nullptr);
  ::AttachThreadInput(own, theirs, TRUE);
  ::SetFocus(control);
  ::AttachThreadInput(own, theirs, FALSE);
  EXPECT_TRUE(wait_until([&] { return focus() == control; }));
}

HWND Program::wait_for_box(const std::string& title) const {
  HWND box = nullptr;
  wait_until([&] { return (box = find_window(process_.dwProcessId, "#32770", title)) != nullptr; });
  return box;
}

bool Program::box_is_open() const {
  return find_window(process_.dwProcessId, "#32770", "") != nullptr;
}

DWORD Program::exit_code() const {
  constexpr DWORD kNever = 9999;
  if (::WaitForSingleObject(process_.hProcess, kPatience) != WAIT_OBJECT_0) return kNever;
  DWORD code = kNever;
  ::GetExitCodeProcess(process_.hProcess, &code);
  return code;
}

bool Program::running() const {
  return ::WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT;
}

double Program::answer_time() const {
  const auto start = std::chrono::steady_clock::now();
  DWORD_PTR answer = 0;
  ::SendMessageTimeoutA(window_, WM_NULL, 0, 0, SMTO_NORMAL, kPatience, &answer);
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

std::vector<std::string> Program::contents() const {
  std::vector<std::string> all;
  for (HWND child : children()) all.push_back(text_of(child) + (checked(child) ? " (on)" : ""));
  return all;
}

std::string text_of(HWND window) {
  const auto length = static_cast<std::size_t>(::SendMessageA(window, WM_GETTEXTLENGTH, 0, 0));
  std::string text(length + 1, '\0');
  text.resize(
      static_cast<std::size_t>(::SendMessageA(window, WM_GETTEXT, length + 1, reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

void set_text(HWND window, const std::string& text) {
  ::SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

std::string class_of(HWND window) {
  char name[64];
  const int length = ::GetClassNameA(window, name, 64);
  return {name, static_cast<std::size_t>(length)};
}

bool checked(HWND option) {
  return _stricmp(class_of(option).c_str(), "BUTTON") == 0 && ::SendMessageA(option, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

bool enabled(HWND window) {
  return ::IsWindowEnabled(window) != FALSE;
}

bool read_only(HWND edit) {
  return (::GetWindowLongA(edit, GWL_STYLE) & ES_READONLY) != 0;
}

RECT place_of(HWND window) {
  RECT place{};
  ::GetWindowRect(window, &place);
  return place;
}

bool wait_until(const std::function<bool()>& holds) {
  const ULONGLONG end = ::GetTickCount64() + kPatience;
  while (!holds()) {
    if (::GetTickCount64() > end) return false;
    ::Sleep(10);
  }
  return true;
}

testing::AssertionResult answers_within(double usual, double worst, const std::function<std::vector<double>()>& round) {
  constexpr int kRounds = 4;
  testing::AssertionResult failure = testing::AssertionFailure();
  for (int i = 0; i < kRounds; ++i) {
    std::vector<double> times = round();
    std::sort(times.begin(), times.end());
    const double at_95 = times.at((times.size() * 19 - 1) / 20);
    if (at_95 < usual && times.back() < worst) return testing::AssertionSuccess();
    failure << at_95 << " ms, at worst " << times.back() << " ms of " << times.size() << "; ";
  }
  return failure;
}

void make_small(const Program& program) {
  RECT frame{0, 0, 760, 480};
  ::AdjustWindowRectEx(&frame, static_cast<DWORD>(::GetWindowLongA(program.window(), GWL_STYLE)), FALSE, 0);
  ::SetWindowPos(program.window(), nullptr, 5, 5, frame.right - frame.left, frame.bottom - frame.top, SWP_NOZORDER);
  ASSERT_TRUE(wait_until([&] { return program.button("Report") != nullptr && checked(program.button("Report")); }));
}

void write_file(const std::string& name, const std::string& text) {
  std::ofstream(name, std::ios::binary) << text;
}
