#include "platform/wmi.h"

#include <array>
#include <optional>
#include <string_view>

#include "platform/win32/call.h"
#include "platform/win32/com.h"
#include "platform/win32/win_api.h"

namespace win32 {

std::string narrow(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int bytes = ::WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(bytes), '\0');
  ::WideCharToMultiByte(CP_ACP, 0, text.data(), length, result.data(), bytes, nullptr, nullptr);
  return result;
}

std::wstring wide(std::string_view text) {
  const int bytes = static_cast<int>(text.size());
  const int length = ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
  std::wstring result(static_cast<std::size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, result.data(), length);
  return result;
}

namespace {

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

bool join_apartment() {
  static const bool joined = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED));
  return joined;
}

}  // namespace
}  // namespace win32

namespace platform {

using win32::Com;
using win32::Variant;

WmiHandle wmi_open(const std::string& moniker) {
  const win32::Call call(win32::Doing::call);
  if (!win32::join_apartment()) return kNoWmi;
  Com<IDispatch> service;
  const std::wstring name = win32::wide(moniker);
  if (FAILED(::CoGetObject(name.c_str(), nullptr, IID_IDispatch, service.out())) || !service) return kNoWmi;
  return win32::keep({std::move(service), {}});
}

WmiHandle wmi_query(WmiHandle service, const std::string& query, std::uint32_t flags) {
  const win32::Call call(win32::Doing::call);
  const auto found = win32::reached.find(service);
  if (found == win32::reached.end() || !found->second.service) return kNoWmi;
  std::array<Variant, 3> arguments;
  arguments[0].vt = VT_I4;
  arguments[0].lVal = static_cast<LONG>(flags);
  if (!win32::set_text(&arguments[1], "WQL") || !win32::set_text(&arguments[2], query)) return kNoWmi;
  std::array<VARIANT, 3> plain = {arguments[0], arguments[1], arguments[2]};
  Variant set;
  if (FAILED(win32::invoke(found->second.service.get(), L"ExecQuery", plain.data(), 3, &set))) return kNoWmi;
  if (set.vt != VT_DISPATCH || set.pdispVal == nullptr) return kNoWmi;

  Variant list;
  DISPPARAMS none{};
  if (FAILED(set.pdispVal->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, win32::kMethodOrProperty, &none, &list,
                                  nullptr, nullptr))) {
    return kNoWmi;
  }
  if ((list.vt != VT_UNKNOWN && list.vt != VT_DISPATCH) || list.punkVal == nullptr) return kNoWmi;
  Com<IEnumVARIANT> rows;
  if (FAILED(list.punkVal->QueryInterface(IID_IEnumVARIANT, rows.out())) || !rows) return kNoWmi;
  return win32::keep({{}, std::move(rows)});
}

WmiNext wmi_next(WmiHandle rows, const std::vector<std::string>& properties, WmiRow* row) {
  const win32::Call call(win32::Doing::call);
  const auto found = win32::reached.find(rows);
  if (found == win32::reached.end() || !found->second.rows) return WmiNext::failed;
  Variant next;
  ULONG fetched = 0;
  const HRESULT result = found->second.rows->Next(1, &next, &fetched);
  if (FAILED(result)) return WmiNext::failed;
  if (result == S_FALSE || fetched == 0) return WmiNext::end;
  if (next.vt != VT_DISPATCH || next.pdispVal == nullptr) return WmiNext::failed;
  row->clear();
  for (const std::string& property : properties) {
    const std::optional<std::string> text = win32::property_text(next.pdispVal, property);
    if (!text) return WmiNext::failed;
    (*row)[property] = *text;
  }
  return WmiNext::row;
}

void wmi_close(WmiHandle handle) {
  const win32::Call call(win32::Doing::call);
  win32::reached.erase(handle);
}

}  // namespace platform
