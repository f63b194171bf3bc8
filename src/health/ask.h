#pragma once

#include "health/health.h"

/// Asks drive `drive`, which was identified last and whose SMART snapshot was taken just before, how it is: by the
/// requests of its bus, through a handle of its own, and by those that every bus may answer. Nothing that it asks
/// changes the drive; a bridge that does not say that it passes ATA commands on gets none. What was asked in vain
/// stands in the answer's `unanswered`.
Health ask_health(int drive);

/// The temperature alone, in degrees Celsius, by the requests that disturb no transfer: the temperature property, or an
/// NVMe drive's health log. Nothing where neither answers.
std::optional<int> ask_celsius(int drive);

/// Why a request failed, in words: "the driver does not pass it on".
std::string reason_of(std::uint32_t code);
