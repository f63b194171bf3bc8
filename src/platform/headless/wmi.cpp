#include "platform/wmi.h"

#include <cstddef>

#include "platform/headless/headless.h"

namespace platform {

using headless::desktop;

namespace {

constexpr WmiHandle kService = 1;

}  // namespace

WmiHandle wmi_open(const std::string& moniker) {
  const CallFacts facts{.text = moniker.c_str()};
  return rehearsed_failure("wmi_open", &facts) != 0 || desktop.wmi_absent ? kNoWmi : kService;
}

WmiHandle wmi_query(WmiHandle service, const std::string& query, std::uint32_t flags) {
  desktop.wmi_queries.push_back(query);
  headless::note(query);
  const CallFacts facts{.text = query.c_str(), .numbers = {flags}};
  if (service != kService || rehearsed_failure("wmi_query", &facts) != 0) return kNoWmi;
  for (std::size_t i = 0; i < desktop.wmi_answers.size(); ++i) {
    const headless::WmiAnswer& answer = desktop.wmi_answers[i];
    if (query.rfind(answer.query, 0) != 0) continue;
    if (answer.fails_at_open) return kNoWmi;
    desktop.wmi_cursors[desktop.next_wmi_rows] = {i, 0};
    return desktop.next_wmi_rows++;
  }
  constexpr std::size_t kNoAnswer = static_cast<std::size_t>(-1);
  desktop.wmi_cursors[desktop.next_wmi_rows] = {kNoAnswer, 0};
  return desktop.next_wmi_rows++;
}

WmiNext wmi_next(WmiHandle rows, const std::vector<std::string>& properties, WmiRow* row) {
  if (rehearsed_failure("wmi_next") != 0) return WmiNext::failed;
  headless::WmiCursor& cursor = desktop.wmi_cursors.at(rows);
  if (cursor.answer >= desktop.wmi_answers.size()) return WmiNext::end;
  const headless::WmiAnswer& answer = desktop.wmi_answers[cursor.answer];
  if (cursor.row == answer.fails_at_row) return WmiNext::failed;
  if (static_cast<std::size_t>(cursor.row) >= answer.rows.size()) return WmiNext::end;
  row->clear();
  for (const std::string& property : properties) {
    const WmiRow& source = answer.rows[static_cast<std::size_t>(cursor.row)];
    const auto found = source.find(property);
    (*row)[property] = found == source.end() ? std::string() : found->second;
  }
  ++cursor.row;
  return WmiNext::row;
}

void wmi_close(WmiHandle handle) {
  desktop.wmi_cursors.erase(handle);
}

}  // namespace platform
