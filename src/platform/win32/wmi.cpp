#include "platform/wmi.h"

#include <array>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>
#include <type_traits>

#include "platform/win32/com.h"
#include "platform/win32/win_api.h"

namespace win32 {

namespace {

/// A thread in the multithreaded apartment, which does one piece of work after the other while its caller waits. In the
/// window's own apartment a call to the service would hand out messages meanwhile, and handlers would run in the middle
/// of a query.
class ServiceThread {
 public:
  ServiceThread() {
    std::thread([this] { serve(); }).detach();
  }

  /// Returns when `work` is done.
  void run(const std::function<void()>& work) {
    std::unique_lock lock(mutex_);
    work_ = &work;
    changed_.notify_all();
    changed_.wait(lock, [this] { return work_ == nullptr; });
  }

 private:
  [[noreturn]] void serve() {
    ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    for (;;) {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return work_ != nullptr; });
      (*work_)();
      work_ = nullptr;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<void()>* work_ = nullptr;  // null when it is done
};

/// Null where the system has no thread for it. It stays until the process ends: under Wine a thread that ends shortly
/// before has cost the exit code.
ServiceThread* service_thread() {
  static ServiceThread* const made = []() -> ServiceThread* {
    try {
      return new ServiceThread;
    } catch (const std::system_error&) {
      return nullptr;
    }
  }();
  return made;
}

/// The handles given out: a service, or the rows of a query.
struct Reached {
  Com<IDispatch> service;
  Com<IEnumVARIANT> rows;
};

std::map<platform::WmiHandle, Reached> reached;
platform::WmiHandle next_handle = 1;

platform::WmiHandle keep(Reached what) {
  reached.emplace(next_handle, std::move(what));
  return next_handle++;
}

constexpr WORD kMethodOrProperty = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

/// Calls `name` of `object` by late binding. `arguments` stand in reverse, as Invoke takes them.
HRESULT invoke(IDispatch* object, const std::wstring& name, VARIANT* arguments, UINT count, VARIANT* result) {
  std::wstring copy = name;
  LPOLESTR spelled = copy.data();
  DISPID id = 0;
  const HRESULT known = object->GetIDsOfNames(IID_NULL, &spelled, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(known)) return known;
  DISPPARAMS parameters{arguments, nullptr, count, 0};
  return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kMethodOrProperty, &parameters, result, nullptr, nullptr);
}

bool set_text(Variant* variant, std::string_view text) {
  const std::wstring source = wide(text);
  variant->bstrVal = ::SysAllocStringLen(source.data(), static_cast<UINT>(source.size()));
  variant->vt = VT_BSTR;
  return variant->bstrVal != nullptr;
}

/// The value as text; a null, and what has no text (an array, an object), is empty.
std::string text_of(VARIANT& value) {
  Variant text;
  if (value.vt == VT_NULL || value.vt == VT_EMPTY) return {};
  if (FAILED(::VariantChangeType(&text, &value, VARIANT_ALPHABOOL, VT_BSTR)) || text.bstrVal == nullptr) return {};
  return narrow({text.bstrVal, ::SysStringLen(text.bstrVal)});
}

/// The property's text; none when the service failed to give it. A property that the row does not have is empty.
std::optional<std::string> property_text(IDispatch* row, const std::string& property) {
  Variant value;
  const HRESULT result = invoke(row, wide(property), nullptr, 0, &value);
  if (result == DISP_E_UNKNOWNNAME) return std::string();
  if (FAILED(result)) return std::nullopt;
  return text_of(value);
}

platform::WmiHandle open_service(const std::string& moniker) {
  Com<IDispatch> service;
  const std::wstring name = wide(moniker);
  if (FAILED(::CoGetObject(name.c_str(), nullptr, IID_IDispatch, service.out())) || !service) return platform::kNoWmi;
  return keep({std::move(service), {}});
}

platform::WmiHandle run_query(platform::WmiHandle service, const std::string& query, std::uint32_t flags) {
  const auto found = reached.find(service);
  if (found == reached.end() || !found->second.service) return platform::kNoWmi;
  std::array<Variant, 3> arguments;
  arguments[0].vt = VT_I4;
  arguments[0].lVal = static_cast<LONG>(flags);
  if (!set_text(&arguments[1], "WQL") || !set_text(&arguments[2], query)) return platform::kNoWmi;
  std::array<VARIANT, 3> plain = {arguments[0], arguments[1], arguments[2]};
  Variant set;
  if (FAILED(invoke(found->second.service.get(), L"ExecQuery", plain.data(), 3, &set))) return platform::kNoWmi;
  if (set.vt != VT_DISPATCH || set.pdispVal == nullptr) return platform::kNoWmi;

  Variant list;
  DISPPARAMS none{};
  if (FAILED(set.pdispVal->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, kMethodOrProperty, &none, &list,
                                  nullptr, nullptr))) {
    return platform::kNoWmi;
  }
  if ((list.vt != VT_UNKNOWN && list.vt != VT_DISPATCH) || list.punkVal == nullptr) return platform::kNoWmi;
  Com<IEnumVARIANT> rows;
  if (FAILED(list.punkVal->QueryInterface(IID_IEnumVARIANT, rows.out())) || !rows) return platform::kNoWmi;
  return keep({{}, std::move(rows)});
}

platform::WmiNext next_row(platform::WmiHandle rows, const std::vector<std::string>& properties,
                           platform::WmiRow* row) {
  const auto found = reached.find(rows);
  if (found == reached.end() || !found->second.rows) return platform::WmiNext::failed;
  Variant next;
  ULONG fetched = 0;
  const HRESULT result = found->second.rows->Next(1, &next, &fetched);
  if (FAILED(result)) return platform::WmiNext::failed;
  if (result == S_FALSE || fetched == 0) return platform::WmiNext::end;
  if (next.vt != VT_DISPATCH || next.pdispVal == nullptr) return platform::WmiNext::failed;
  row->clear();
  for (const std::string& property : properties) {
    const std::optional<std::string> text = property_text(next.pdispVal, property);
    if (!text) return platform::WmiNext::failed;
    (*row)[property] = *text;
  }
  return platform::WmiNext::row;
}

}  // namespace
}  // namespace win32

namespace platform {

namespace {

/// What `work` gives, done on the service's thread; `otherwise` where there is none.
template <typename Work>
std::invoke_result_t<Work> on_service_thread(Work work, std::invoke_result_t<Work> otherwise) {
  if (win32::service_thread() == nullptr) return otherwise;
  win32::service_thread()->run([&] { otherwise = work(); });
  return otherwise;
}

}  // namespace

WmiHandle wmi_open(const std::string& moniker) {
  return on_service_thread([&] { return win32::open_service(moniker); }, kNoWmi);
}

WmiHandle wmi_query(WmiHandle service, const std::string& query, std::uint32_t flags) {
  return on_service_thread([&] { return win32::run_query(service, query, flags); }, kNoWmi);
}

WmiNext wmi_next(WmiHandle rows, const std::vector<std::string>& properties, WmiRow* row) {
  return on_service_thread([&] { return win32::next_row(rows, properties, row); }, WmiNext::failed);
}

void wmi_close(WmiHandle handle) {
  on_service_thread([handle] { return win32::reached.erase(handle); }, 0);
}

}  // namespace platform
