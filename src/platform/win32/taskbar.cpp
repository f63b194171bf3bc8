#include "platform/win32/com.h"
#include "platform/win32/main_window.h"

// Behind the system's other headers, which it needs.
#include <shobjidl.h>

namespace win32 {

namespace {

/// Null where there is none. COM is joined as the management service does it, whoever comes first.
ITaskbarList3* taskbar() {
  static const Com<ITaskbarList3> list = [] {
    Com<ITaskbarList3> made;
    ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const HRESULT result =
        ::CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3, made.out());
    if (FAILED(result) || !made || FAILED(made->HrInit())) return Com<ITaskbarList3>();
    return made;
  }();
  return list.get();
}

bool shows_progress = false;

}  // namespace

void show_on_taskbar(const platform::Share& share) {
  ITaskbarList3* const list = taskbar();
  if (list == nullptr) return;
  shows_progress = true;
  constexpr ULONGLONG kWhole = 1000;
  list->SetProgressState(main_window.window, share.failed ? TBPF_ERROR : TBPF_NORMAL);
  list->SetProgressValue(main_window.window, static_cast<ULONGLONG>(share.done * static_cast<double>(kWhole)), kWhole);
}

void clear_taskbar() {
  if (shows_progress) taskbar()->SetProgressState(main_window.window, TBPF_NOPROGRESS);
  shows_progress = false;
}

}  // namespace win32
