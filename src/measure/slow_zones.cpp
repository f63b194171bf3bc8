#include "measure/slow_zones.h"

#include <algorithm>

namespace {

bool touches(const SlowZone& zone, const Transfer& transfer) {
  return transfer.lba <= zone.end_lba && transfer.lba + transfer.sectors >= zone.first_lba;
}

}  // namespace

void add_slow(const Transfer& transfer, SlowZones* zones) {
  const double rate = rate_of(transfer);
  for (std::size_t i = zones->kept; i-- > 0;) {
    SlowZone& zone = zones->zones.at(i);
    if (!touches(zone, transfer)) continue;
    zone.first_lba = std::min(zone.first_lba, transfer.lba);
    zone.end_lba = std::max(zone.end_lba, transfer.lba + transfer.sectors);
    ++zone.transfers;
    zone.longest = std::max(zone.longest, transfer.seconds);
    zone.lowest_rate = std::min(zone.lowest_rate, rate);
    return;
  }
  if (zones->kept == SlowZones::kMost) {
    ++zones->transfers_beyond;
    return;
  }
  zones->zones.at(zones->kept++) = {transfer.lba, transfer.lba + transfer.sectors, 1, transfer.seconds, rate};
}
