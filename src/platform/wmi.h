#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace platform {

/// A connection to the management service, or the rows of a query; -1 invalid. Released by wmi_close().
using WmiHandle = std::int64_t;
inline constexpr WmiHandle kNoWmi = -1;

/// One row: property name to its value as text in the ANSI code page; a null value is the empty text.
using WmiRow = std::map<std::string, std::string>;

enum class WmiNext : std::uint8_t { row, end, failed };

/// Opens the service that `moniker` names ("winmgmts:..."); kNoWmi when it cannot be reached.
WmiHandle wmi_open(const std::string& moniker);

/// Runs `query` in the language WQL with `flags` (48 = return at once, forward only); kNoWmi when it fails.
WmiHandle wmi_query(WmiHandle service, const std::string& query, std::uint32_t flags);

/// Fetches the next row's `properties`. `failed` may come at any row, the first included: the service runs a query when
/// its rows are asked for.
WmiNext wmi_next(WmiHandle rows, const std::vector<std::string>& properties, WmiRow* row);

void wmi_close(WmiHandle handle);

}  // namespace platform
