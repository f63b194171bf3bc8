#pragma once

#include <string_view>

namespace platform {

/// True for names that the system gives to devices, in either case and with either slash: those of the device spaces
/// ("\\.\PhysicalDrive0", "\\?\C:", "\??\C:"), and those that it keeps in every folder, whatever their extension
/// ("NUL", "com1.csv"; Windows, "Naming Files, Paths, and Namespaces").
bool names_device(std::string_view name);

}  // namespace platform
