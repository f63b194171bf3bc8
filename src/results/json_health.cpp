#include "buffer/hex_text.h"
#include "health/numbers.h"
#include "platform/bytes.h"
#include "results/json_text.h"
#include "results/result.h"

namespace {

constexpr int kTenths = 1;

std::string hex_text(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) text += NumbertoHex(byte);
  return text;
}

std::vector<std::uint8_t> six_bytes(std::uint64_t raw) {
  std::vector<std::uint8_t> six(6);
  bytes::put_le(six, 0, six.size(), raw);
  return six;
}

const char* protocol_name(HealthProtocol protocol) {
  switch (protocol) {
    case HealthProtocol::nvme:
      return "NVMe";
    case HealthProtocol::ata:
      return "ATA";
    case HealthProtocol::scsi:
      return "SCSI";
    case HealthProtocol::none:
      break;
  }
  return "none";
}

void put_truth(const char* name, std::optional<bool> value, JsonText* json) {
  if (value) json->truth(name, *value);
}

void put_attributes(const Health& health, JsonText* json) {
  if (health.attributes.empty()) return;
  json->open_array("attributes");
  for (const HealthAttribute& attribute : health.attributes) {
    json->open_object();
    json->number("id", attribute.id);
    json->number("flags", attribute.flags);
    json->number("current", attribute.current);
    json->number("worst", attribute.worst);
    json->number("threshold", attribute.threshold);
    json->number("raw", static_cast<std::int64_t>(attribute.raw));
    json->text("raw_bytes", hex_text(six_bytes(attribute.raw)));
    json->close_object();
  }
  json->close_array();
}

void put_snapshot(const char* name, const std::optional<Health>& health, JsonText* json) {
  json->open_object(name);
  json->truth("asked", health.has_value());
  if (health) {
    json->truth("answered", health->answered);
    json->text("protocol", protocol_name(health->protocol));
    put_truth("driver_predicts_failure", health->driver_predicts_failure, json);
    put_truth("smart_status_predicts_failure", health->status_says_failing, json);
    if (health->asc) json->number("additional_sense_code", *health->asc);
    if (health->ascq) json->number("additional_sense_code_qualifier", *health->ascq);
    for (const HealthNumber& number : health_numbers()) {
      if (const auto value = number.of(*health)) json->number(number.key, *value);
    }
    put_attributes(*health, json);
    json->open_array("pages");
    for (const RawPage& page : health->pages) {
      json->open_object();
      json->text("name", page.name);
      json->text("bytes", hex_text(page.bytes));
      json->close_object();
    }
    json->close_array();
    json->open_array("not_answered");
    for (const Unanswered& one : health->unanswered) {
      json->open_object();
      json->text("request", one.request);
      json->number("code", one.code);
      json->text("reason", one.reason);
      json->close_object();
    }
    json->close_array();
  }
  json->close_object();
}

void put_temperatures(const TemperatureTrack& track, JsonText* json) {
  json->open_array("temperatures");
  for (const TemperatureTrack::Sample& sample : track.samples) {
    json->open_object();
    json->real("seconds", sample.seconds, kTenths);
    json->number("celsius", sample.celsius);
    json->close_object();
  }
  json->close_array();
  json->number("pauses", track.pauses);
  json->real("paused_seconds", track.paused_seconds, kTenths);
}

void put_texts(const char* name, const std::vector<std::string>& texts, JsonText* json) {
  json->open_array(name);
  for (const std::string& text : texts) json->text({}, text);
  json->close_array();
}

}  // namespace

void put_health(const Result& result, JsonText* json) {
  const RunFindings& told = result.findings;
  json->open_object("health");
  if (told.judged) json->text("verdict", grade_name(told.verdict.grade));
  put_texts("why", told.verdict.facts, json);
  put_snapshot("before", result.health_before, json);
  put_snapshot("after", result.health_after, json);
  put_temperatures(told.temperature, json);
  put_texts("grown_since_last_run", told.grown_since, json);
  json->close_object();
}
