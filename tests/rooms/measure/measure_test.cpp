#include "measure/measure.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include "measure/graph_scale.h"
#include "tests/support/rig.h"

namespace {

class MeasureTest : public Rig {
 protected:
  /// Transfers of `sectors` sectors in a row from `lba`, each at `rate` MB/s, one after the other in time.
  void transfers(int count, std::int64_t sectors, double rate) {
    for (int i = 0; i < count; ++i) transfer(sectors, static_cast<double>(sectors) / 2048.0 / rate);
  }
  void transfer(std::int64_t sectors, double seconds, bool slow = false, std::uint32_t error = 0) {
    measure_transfer({.wrote = false,
                      .slow = slow,
                      .error = error,
                      .lba = lba,
                      .sectors = sectors,
                      .start = now,
                      .end = now + seconds});
    lba += sectors;
    now += seconds;
  }
  std::int64_t lba = 0;
  double now = 1000.0;
};

TEST_F(MeasureTest, AStalledSectorIsSeenWhateverTheTransfersLength) {
  for (const std::int64_t sectors : {std::int64_t{8}, std::int64_t{20480}}) {
    begin_measuring({.kind = RunKind::read, .sectors = 30 * sectors});
    lba = 0;
    const double usual = static_cast<double>(sectors) / 2048.0 / 100.0;
    for (const double stall : {0.7, 0.0, 0.0, 0.45, 0.0, 0.0, 0.0, 0.3, 0.3, 0.0, 0.1, 0.0, 0.0, 0.02, 0.0, 0.51})
      transfer(sectors, usual + stall);
    end_measuring(false);
    EXPECT_EQ(measure.latency.classes, (std::array<std::int64_t, kLatencyClasses>{9, 0, 1, 1, 3, 2, 0})) << sectors;
    EXPECT_EQ(measure.stalled, 5);
    EXPECT_EQ(measure.stalls.at(0).lba, 0);
    EXPECT_NEAR(measure.stalls.at(1).beyond, 0.45, 1e-9);
    EXPECT_EQ(pixel_column(measure.map, 3, 30).facts.worst, LatencyClass::under_500) << "a cell is its worst transfer";
    EXPECT_GT(pixel_column(measure.map, 15, 30).facts.stalled, 0U);
  }
}

TEST_F(MeasureTest, ADiskThatIsSlowOrGetsSlowerDoesNotStall) {
  begin_measuring({.kind = RunKind::read, .sectors = 300 * 20480});
  for (int i = 0; i < 100; ++i) transfers(1, 20480, 180.0 - i);
  for (int i = 0; i < 100; ++i) transfers(1, 20480, 2.0);
  end_measuring(false);
  EXPECT_GE(measure.latency.classes.at(0), 185);
  EXPECT_LE(measure.stalled, 7) << "where the pace breaks";
}

TEST_F(MeasureTest, AFewTransfersAreJudgedByTheirLengthAlone) {
  begin_measuring({.kind = RunKind::read, .sectors = 100000});
  transfer(256, 0.2);
  transfer(20480, 0.2);
  transfer(256, 0.01, false, 23);
  end_measuring(false);
  EXPECT_EQ(measure.latency.classes, (std::array<std::int64_t, kLatencyClasses>{1, 0, 0, 0, 1, 0, 1}));
}

TEST_F(MeasureTest, PercentilesStayWithinOnePercent) {
  begin_measuring({.kind = RunKind::random_read, .sectors = 1000});
  std::vector<double> all;
  double seconds = 1e-6;
  for (int i = 0; i < 5000; ++i) {
    all.push_back(seconds);
    lba = i % 1000;
    transfer(1, seconds);
    seconds *= 1.0037;
  }
  for (const double percent : {50.0, 95.0, 99.0, 99.9}) {
    const double exact = all.at(static_cast<std::size_t>(percent / 100.0 * 5000.0) - 1) * 1000.0;
    EXPECT_NEAR(percentile(measure.latency, percent), exact, exact * 0.01) << percent;
  }
  EXPECT_NEAR(measure.latency.slowest.at(0).seconds, all.back(), 1e-9);
  EXPECT_NEAR(measure.latency.slowest.at(9).seconds, all.at(4990), 1e-9);
}

TEST_F(MeasureTest, SlowTransfersInARowAreOneZoneAndTheFullListCountsOn) {
  begin_measuring({.kind = RunKind::read, .sectors = 100000000});
  transfer(100, 1.0, true);
  transfer(100, 3.0, true);
  for (int i = 0; i < 300; ++i) {
    transfer(100, 0.001);
    transfer(100, 2.0, true);
  }
  const SlowZone& zone = measure.zones.zones.front();
  EXPECT_EQ(zone.first_lba, 0);
  EXPECT_EQ(zone.end_lba, 200);
  EXPECT_EQ(zone.transfers, 2);
  EXPECT_EQ(zone.longest, 3.0);
  EXPECT_EQ(measure.zones.kept, SlowZones::kMost);
  EXPECT_EQ(measure.zones.transfers_beyond, 302 - 2 - 255);
}

TEST_F(MeasureTest, EveryStretchOfASequentialRunKnowsItsRates) {
  begin_measuring({.kind = RunKind::read, .first_lba = 5000, .sectors = 2097152});
  lba = 5000;
  transfers(51, 20480, 100.0);
  transfers(51, 20480, 50.0);
  transfer(8192, 4.0, true, 23);
  std::vector<PixelColumn> graph(100);
  resample(measure.map, graph);
  EXPECT_NEAR(average_rate(graph[10].facts), 100.0, 1e-6);
  EXPECT_NEAR(average_rate(graph[90].facts), 50.0, 1e-6);
  EXPECT_EQ(graph[0].first_lba, 5000);
  EXPECT_EQ(graph[99].end_lba, 5000 + 2097152);
  EXPECT_EQ(graph[99].facts.errors > 0, true);
  EXPECT_EQ(graph[99].facts.worst, LatencyClass::error);
  EXPECT_EQ(graph[98].facts.errors, 0U);
  PixelColumn whole = pixel_column(measure.map, 0, 1);
  EXPECT_NEAR(whole.facts.lowest, 50.0, 1e-3);
  EXPECT_NEAR(whole.facts.highest, 100.0, 1e-3);
  EXPECT_NEAR(whole.facts.sectors, 102 * 20480.0, 1e-3) << "each sector counted once";
}

TEST_F(MeasureTest, OddRangesAreCoveredToTheirLastSector) {
  for (const std::int64_t sectors : {std::int64_t{1}, std::int64_t{7}, std::int64_t{4097}, std::int64_t{39062500000}}) {
    begin_measuring({.kind = RunKind::read, .first_lba = 3, .sectors = sectors});
    for (lba = 3 + sectors - 1; lba < 3 + sectors + 5;) transfer(4, 0.01, false, 5);
    lba = 0;
    transfer(3, 0.01);
    std::vector<PixelColumn> graph(1920);
    resample(measure.map, graph);
    EXPECT_EQ(graph.front().first_lba, 3);
    EXPECT_EQ(graph.back().end_lba, 3 + sectors);
    EXPECT_EQ(graph.back().facts.errors, 1U) << "only the one that touches the range, for " << sectors;
    for (std::size_t i = 1; i < graph.size(); ++i) ASSERT_LE(graph[i].first_lba, graph[i - 1].end_lba);
  }
}

TEST_F(MeasureTest, RandomTestsKeepAnEvenSampleOfPoints) {
  begin_measuring({.kind = RunKind::random_read, .sectors = 1000000});
  for (int i = 0; i < 100000; ++i) {
    lba = i * 10;
    transfer(1, 0.001);
  }
  const auto kept = points(measure.map);
  ASSERT_EQ(kept.size(), RateMap::kPoints);
  const auto early = std::count_if(kept.begin(), kept.end(), [](const RatePoint& p) { return p.lba < 500000; });
  EXPECT_NEAR(static_cast<double>(early), RateMap::kPoints / 2.0, 300.0);
}

TEST_F(MeasureTest, TheTimeLeftFollowsTheLastHalfMinute) {
  begin_measuring({.kind = RunKind::read, .sectors = 200 * 2048});
  transfers(50, 2048, 1.0);
  EXPECT_NEAR(how_far(measure).seconds_left, 150.0, 1e-6);
  transfers(62, 2048, 2.0);
  EXPECT_NEAR(how_far(measure).share, 112.0 / 200.0, 1e-9);
  EXPECT_NEAR(how_far(measure).seconds_left, 44.0, 1e-6) << "the slow start lies 31 seconds back";
  transfer(2048, 100.0);
  EXPECT_NEAR(how_far(measure).seconds_left, 87.0 * 100.0, 90.0) << "one transfer longer than the window";
}

TEST_F(MeasureTest, MidnightsDoNotDisturbTheClock) {
  begin_measuring({.kind = RunKind::read, .sectors = 100});
  for (const double start : {86390.0, 10.0, 80000.0, 86399.5, 100.0}) {
    measure_transfer({.lba = 0, .sectors = 1, .start = start, .end = start > 86399.0 ? 0.5 : start + 1.0});
  }
  EXPECT_NEAR(measure.seconds, 86400.0 * 2 + 101.0 - 86390.0, 1e-6);
  EXPECT_NEAR(measure.latency.slowest.at(0).seconds, 1.0, 1e-9);
}

TEST_F(MeasureTest, PhasesNameWhatATransferWasPartOf) {
  static std::vector<std::string> seen;
  seen.clear();
  measure.on_transfer = [](const Transfer& transfer) { seen.emplace_back(phase_text(transfer.phase)); };
  const auto one = [](bool wrote) { measure_transfer({.wrote = wrote, .sectors = 1}); };
  one(false);
  begin_measuring({.kind = RunKind::random_write, .sectors = 9});
  one(false);
  one(true);
  measure_phase(Phase::verifying);
  one(false);
  measure_phase(Phase::restoring);
  one(true);
  EXPECT_EQ(seen, (std::vector<std::string>{"reading", "writing", "verifying", "restoring"}));
}

TEST_F(MeasureTest, ScalesAreRound) {
  EXPECT_EQ(round_scale(183.0, 6).step, 50.0);
  EXPECT_EQ(round_scale(183.0, 6).top, 200.0);
  EXPECT_NEAR(round_scale(0.37, 5).top, 0.4, 1e-12);
  EXPECT_EQ(round_scale(0.37, 5).decimals, 1);
  EXPECT_EQ(round_scale(0.0, 5).top, 1.0);
  const RangeAxis disk = range_axis(2097152, 39062500000, 10);
  EXPECT_STREQ(disk.unit, "GB");
  ASSERT_EQ(disk.ticks.size(), 9U);
  EXPECT_EQ(disk.ticks[0].value, 2000.0);
  EXPECT_NEAR(disk.ticks[0].share, 1999.0 / 18626.0, 1e-5);
  EXPECT_EQ(disk.ticks[8].value, 18000.0);
  EXPECT_STREQ(range_axis(0, 4096, 10).unit, "MB");
  EXPECT_EQ(range_axis(5, 3, 10).ticks.size(), 4U) << "no half sectors";
  EXPECT_LE(range_axis(std::numeric_limits<std::int64_t>::max(), 1, 10).ticks.size(), 11U);
}

TEST_F(MeasureTest, ATransferCostsWellBelowAMicrosecond) {
  constexpr int kTransfers = 200000;
  begin_measuring({.kind = RunKind::read, .sectors = std::int64_t{kTransfers} * 20480});
  const auto start = std::chrono::steady_clock::now();
  transfers(kTransfers, 20480, 100.0);
  const std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
  EXPECT_LT(spent.count() / kTransfers, 10.0) << "microseconds, unoptimized and sanitized";
}

}  // namespace
