#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "measure/measure.h"

/// The commands of the window and of /OP. A new one is a row of the table in commands.cpp; its steps live in
/// ops/operations.h.

/// A row. Steps that a command does not have are null.
struct Command {
  const char* name;  // as /OP and the handlers name it

  // What the command line may ask of it.
  bool has_switch = false;  // /OP can name it; tests and the window's controls start the others
  bool needs_serial = false;
  bool takes_find = false;      // and needs it
  bool has_range = false;       // works on the range in the fields
  std::int64_t most_count = 0;  // of /COUNT; 0 for no limit
  const char* above_most = "";  // what a larger one is told

  // Before its frame, in this order.
  bool (*prepare)() = nullptr;          // false leaves the command
  const char* trace = nullptr;          // the line that says what has started
  std::string (*question)() = nullptr;  // title of the question whether the disk may be overwritten
  bool (*confirm)() = nullptr;          // asks what no mode leaves out

  // In its frame.
  bool writes = false;            // the drive's volumes are locked and dismounted meanwhile
  bool finds_bad_places = false;  // behind the frame, where its transfers failed or stalled
  bool from_buffer = false;       // writes what the buffer holds over the range in the fields
  std::optional<RunPlan> (*plan)() = nullptr;
  bool timed = true;  // the totals tell the time between its first and last transfer
  void (*transfer)(const RunPlan& plan) = nullptr;
  void (*report)() = nullptr;
  void (*read_back)(const RunPlan& plan) = nullptr;  // after the frame: what its question offers

  // In place of all that for a command that is no operation: it has no frame, and nothing to measure.
  void (*alone)() = nullptr;
  const char* unmeasured_name = "none";  // its name in a result file
};

std::span<const Command> commands();

/// The command of that name, or null.
const Command* command_named(std::string_view name);

/// Runs the command `name` with its fellow buttons locked; nothing while another one runs. A drive pressed meanwhile is
/// selected afterwards, so that no command ever touches a second drive. When the user leaves the program instead, the
/// process ends inside.
void run_command(std::string_view name);

/// Runs the command that was pressed while a drive was being selected, if there is one. A drive press or Cancel after
/// it takes it back.
void run_pending_command();

/// Returns why the exact bad sectors of the last command cannot be searched for; empty if they can.
std::string why_no_exact_search();

/// Reads the failed and stalled transfers of the last READ or SEARCH again in pieces (ops/pinpoint.h) and appends the
/// block BAD PLACES. Reads only; does nothing if why_no_exact_search() returns a reason.
void find_exact_sectors();
