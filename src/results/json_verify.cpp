#include "results/json_text.h"
#include "results/result.h"

void put_verify(const Result& result, JsonText* json) {
  const VerifyRun& run = result.verify;
  if (!run.asked) return;
  json->open_object("verify");
  json->truth("after_write", run.after_write);
  json->text("pattern", run.pattern);
  json->number("chunks", run.chunks);
  json->number("compared", run.compared);
  json->number("not_read", run.failed);
  json->number("differing", run.differing);
  json->open_array("differences");
  for (const VerifyRun::Difference& difference : run.listed) {
    json->open_object();
    json->number("lba", difference.lba);
    json->number("offset", difference.offset);
    json->number("sectors", difference.sectors);
    json->close_object();
  }
  json->close_array();
  json->number("differences_not_listed", run.differing - std::ssize(run.listed));
  json->close_object();
}
