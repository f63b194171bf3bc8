#include "form/outcome.h"

const char* outcome_name(Outcome outcome) {
  switch (outcome) {
    case Outcome::ok:
      return "ok";
    case Outcome::errors:
      return "errors";
    case Outcome::cancelled:
      return "cancelled";
    case Outcome::missing:
      return "missing";
    case Outcome::refused:
      return "refused";
    case Outcome::mistake:
      break;
  }
  return "mistake";
}

void end_before_transfers(Outcome outcome, const std::string& reason) {
  command_end.before_transfers = outcome;
  command_end.reason = reason;
}
