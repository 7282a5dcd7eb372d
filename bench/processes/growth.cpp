// How the time of a cut follows the ZIP codes that it keeps.

#include <algorithm>
#include <cmath>

#include "info/info.h"
#include "processes/cuts.h"

namespace statecut::bench {

namespace {

struct Point {
  States states;
  double zips = 0;
  double bytes = 0;  // of both outputs
  std::vector<double> seconds;
};

std::vector<info::StateInfo> statesOf(const Setup& setup) {
  const std::string bytes = readFile(setup.ref());
  std::vector<info::StateInfo> states =
      info::describe(setup.ref(),
                     {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()})
          .states;
  std::stable_sort(states.begin(), states.end(),
                   [](const auto& a, const auto& b) { return a.zips > b.zips; });
  return states;
}

// States, the large ones first, with about this share of all ZIP codes.
Point pick(const std::vector<info::StateInfo>& states, double share) {
  double all = 0;
  for (const info::StateInfo& state : states) all += static_cast<double>(state.zips);
  Point point;
  for (const info::StateInfo& state : states) {
    const auto zips = static_cast<double>(state.zips);
    if (point.zips + zips > share * all * 1.001) continue;
    point.states.push_back(state.state);
    point.zips += zips;
  }
  return point;
}

// The largest distance of a point from the least-squares line through all, as a share of the line.
double deviation(const std::vector<double>& x, const std::vector<double>& y) {
  const auto n = static_cast<double>(x.size());
  double sumX = 0, sumY = 0, sumXX = 0, sumXY = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    sumX += x[i];
    sumY += y[i];
    sumXX += x[i] * x[i];
    sumXY += x[i] * y[i];
  }
  const double slope = (n * sumXY - sumX * sumY) / (n * sumXX - sumX * sumX);
  const double start = (sumY - slope * sumX) / n;
  double most = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double line = start + slope * x[i];
    most = std::max(most, std::abs(y[i] - line) / line);
  }
  return most;
}

}  // namespace

RowSamples growth(const Setup& setup) {
  const std::vector<info::StateInfo> states = statesOf(setup);
  std::vector<Point> points;
  for (const double share : {0.125, 0.25, 0.5, 1.0}) points.push_back(pick(states, share));
  loadIntoCache({setup.ref(), setup.rng()});
  for (int round = -1; round < setup.rounds; ++round) {
    for (Point& point : points) {
      const Cut cut = prepareCut(setup, setup.work / "cut", point.states);
      settle(cut.outputs);
      primePages(setup.work / "scratch", static_cast<std::uint64_t>(point.bytes));
      const Usage usage = runWell(cut.command);
      point.bytes = static_cast<double>(bytesOf(cut.outputs));
      if (round >= 0) point.seconds.push_back(usage.wall);
      cut.remove();
    }
  }
  std::vector<double> zips, bytes, medians, minima;
  RowSamples samples;
  for (const Point& point : points) {
    zips.push_back(point.zips);
    bytes.push_back(point.bytes);
    medians.push_back(median(point.seconds));
    minima.push_back(minimum(point.seconds));
    samples.notes.push_back(std::to_string(static_cast<long>(point.zips)) + " ZIP codes, " +
                            std::to_string(static_cast<long>(point.bytes)) +
                            " bytes: " + std::to_string(minima.back()) + " s");
  }
  samples.figures.push_back({"by ZIP codes", "%", {100 * deviation(zips, minima)}, {}});
  samples.figures.push_back({"by bytes written", "%", {100 * deviation(bytes, minima)}, {}});
  return samples;
}

}  // namespace statecut::bench
